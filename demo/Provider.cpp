// SPDX-License-Identifier: MIT
#include "demo/Provider.h"

#include "demo/Pages.h"

#include <httplib.h>

#include <charconv>
#include <condition_variable>
#include <ctime>
#include <map>
#include <mutex>
#include <optional>
#include <thread>

namespace demo {

namespace {

constexpr std::size_t threads = 32;
constexpr std::chrono::seconds slowness { 8 };
// Longer than any client waits. Without a limit, clients that have given up would use up the threads.
constexpr std::chrono::minutes patience { 2 };
constexpr auto html = "text/html; charset=utf-8";
constexpr auto xml = "text/xml; charset=utf-8";

std::chrono::year_month_day today()
{
    std::time_t const now = std::time(nullptr);
    std::tm local {};
    ::localtime_r(&now, &local);
    return std::chrono::year { local.tm_year + 1900 } / (local.tm_mon + 1) / local.tm_mday;
}

std::optional<int> numberIn(httplib::Request const& request, char const* name)
{
    std::string const text = request.get_param_value(name);
    char const* const end = text.data() + text.size();
    int number = 0;
    auto const [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc {} && stop == end ? std::optional { number } : std::nullopt;
}

// A usage key is sent unescaped, so it is taken from the URL as received.
std::string_view queryOf(httplib::Request const& request)
{
    std::string_view const target = request.target;
    auto const mark = target.find('?');
    return mark == std::string_view::npos ? std::string_view {} : target.substr(mark + 1);
}

// Announces the whole body, sends its first part and closes the connection.
void breakOff(httplib::Response& response, Reply const& reply, std::size_t sent)
{
    response.set_content_provider(reply.body.size() + 1, reply.contentType,
        [part = reply.body.substr(0, sent)](std::size_t, std::size_t, httplib::DataSink& sink) {
            sink.write(part.data(), part.size());
            return false;
        });
}

Reply htmlReply(std::string body, int status = 200) { return { std::move(body), Manner::AtOnce, status, html }; }

std::optional<std::chrono::year_month> monthIn(httplib::Request const& request)
{
    auto const year = numberIn(request, "year");
    auto const month = numberIn(request, "month");
    if (!year || !month || *month < 1 || *month > 12)
        return {};
    return std::chrono::year { *year } / std::chrono::month { unsigned(*month) };
}

}

class Provider::Server {
public:
    explicit Server(CertificateFiles const& files)
        : http_ { files.certificate.c_str(), files.privateKey.c_str() }
    {
        for (auto const& [name, key] : demoKeys())
            setReply(name, key.reply);
    }

    bool listen(int port)
    {
        if (!http_.is_valid())
            return false;
        configure();
        port_ = port == 0 ? http_.bind_to_any_port("127.0.0.1") : port;
        if (port != 0 && !http_.bind_to_port("127.0.0.1", port))
            return false;
        if (port_ <= 0)
            return false;
        thread_ = std::thread { [this] { http_.listen_after_bind(); } };
        // The library ignores a stop before it is running.
        while (!http_.is_running())
            std::this_thread::yield();
        return true;
    }

    void stop()
    {
        {
            std::lock_guard const lock { mutex_ };
            stopping_ = true;
        }
        changed_.notify_all();
        http_.stop();
        if (thread_.joinable())
            thread_.join();
    }

    int port() const { return port_; }

    std::string host() const { return "localhost:" + std::to_string(port_); }

    void setReply(std::string key, Reply reply)
    {
        if (reply.contentType.empty())
            reply.contentType = xml;
        std::lock_guard const lock { mutex_ };
        replies_.insert_or_assign(std::move(key), std::move(reply));
    }

    void setPage(std::string path, Reply reply)
    {
        if (reply.contentType.empty())
            reply.contentType = html;
        std::lock_guard const lock { mutex_ };
        pages_.insert_or_assign(std::move(path), std::move(reply));
    }

    void setLookup(std::string body)
    {
        std::lock_guard const lock { mutex_ };
        lookup_ = std::move(body);
    }

    int requestCount(std::string_view key)
    {
        std::lock_guard const lock { mutex_ };
        return countOf(key);
    }

    bool waitForRequests(std::string_view key, int count, std::chrono::milliseconds bound)
    {
        std::unique_lock lock { mutex_ };
        return changed_.wait_for(lock, bound, [&] { return countOf(key) >= count; });
    }

    std::vector<std::string> pageRequests(std::string_view path)
    {
        std::lock_guard const lock { mutex_ };
        auto const requests = pageRequests_.find(path);
        return requests == pageRequests_.end() ? std::vector<std::string> {} : requests->second;
    }

private:
    void configure()
    {
        http_.set_tcp_nodelay(true);
        http_.new_task_queue = [] { return new httplib::ThreadPool(threads); };
        // An idle connection would delay the end.
        http_.set_keep_alive_max_count(1);
        http_.set_keep_alive_timeout(1);
        auto const handler
            = [this](httplib::Request const& request, httplib::Response& response) { serve(request, response); };
        http_.Get(".*", handler);
        http_.Post(".*", handler);
    }

    void serve(httplib::Request const& request, httplib::Response& response)
    {
        Reply reply;
        {
            std::lock_guard const lock { mutex_ };
            pageRequests_[request.path].push_back(request.target);
            reply = replyTo(request);
        }
        changed_.notify_all();
        answer(reply, response);
    }

    // Runs with the lock held, like everything it calls, so that whoever has seen a request can only change later
    // answers.
    Reply replyTo(httplib::Request const& request)
    {
        if (auto const page = pages_.find(request.path); page != pages_.end())
            return page->second;
        if (request.path == "/account/usage/api")
            return replyToApi(request);
        if (request.path == "/support/usage/api")
            return htmlReply(helpPage());
        if (request.path == "/support/site.css")
            return { siteStyle(), Manner::AtOnce, 200, "text/css; charset=utf-8" };
        if (auto const month = monthIn(request); month && request.path == "/support/usage")
            return htmlReply(usagePage(host(), lastKey_, *month, today()));
        return htmlReply(notFoundPage(), 404);
    }

    // The two services share a path on different hosts, like the provider's own.
    Reply replyToApi(httplib::Request const& request)
    {
        constexpr std::string_view keyMark = "key=";
        std::string_view const query = queryOf(request);
        bool const atWww = request.get_header_value("Host").starts_with("www.");
        if (atWww && query == "request=key")
            return { lookup_, Manner::AtOnce, 200, xml };
        if (!atWww && query.starts_with(keyMark))
            return replyToKey(std::string { query.substr(keyMark.size()) });
        return htmlReply(notFoundPage(), 404);
    }

    Reply replyToKey(std::string const& key)
    {
        ++counts_[key];
        // The usage pages have no key, because they show the connection that asks; here, that is the last one.
        lastKey_ = key;
        auto const known = replies_.find(key);
        return known == replies_.end() ? replies_.at("demoempty") : known->second;
    }

    void answer(Reply const& reply, httplib::Response& response)
    {
        response.status = reply.status;
        for (auto const& [name, value] : reply.headers)
            response.set_header(name, value);
        if (reply.manner == Manner::CutOff)
            return breakOff(response, reply, reply.body.size() / 2);
        bool const never = reply.manner == Manner::Never;
        bool const held = never || reply.manner == Manner::Slowly;
        bool const stopped = held && stoppedWithin(never ? patience : slowness);
        if (never || stopped)
            return breakOff(response, reply, 0);
        response.set_content(reply.body, reply.contentType);
    }

    bool stoppedWithin(std::chrono::seconds time)
    {
        std::unique_lock lock { mutex_ };
        return changed_.wait_for(lock, time, [this] { return stopping_; });
    }

    int countOf(std::string_view key) const
    {
        auto const count = counts_.find(key);
        return count == counts_.end() ? 0 : count->second;
    }

    httplib::SSLServer http_;
    int port_ = 0;
    std::thread thread_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::map<std::string, Reply, std::less<>> replies_;
    std::map<std::string, Reply, std::less<>> pages_;
    std::map<std::string, int, std::less<>> counts_;
    std::map<std::string, std::vector<std::string>, std::less<>> pageRequests_;
    std::string lastKey_;
    std::string lookup_ = lookupBody("demohome");
    bool stopping_ = false;
};

std::unique_ptr<Provider> Provider::start(CertificateFiles const& files, int port)
{
    auto server = std::make_unique<Server>(files);
    if (!server->listen(port))
        return {};
    return std::unique_ptr<Provider> { new Provider { std::move(server) } };
}

Provider::Provider(std::unique_ptr<Server> server)
    : server_ { std::move(server) }
{
}

Provider::~Provider() { stop(); }

int Provider::port() const { return server_->port(); }

std::string Provider::host() const { return server_->host(); }

void Provider::setReply(std::string key, Reply reply) { server_->setReply(std::move(key), std::move(reply)); }

void Provider::setReport(std::string key, std::string body) { server_->setReply(std::move(key), { std::move(body) }); }

void Provider::setPage(std::string path, Reply reply) { server_->setPage(std::move(path), std::move(reply)); }

void Provider::setLookup(std::string body) { server_->setLookup(std::move(body)); }

int Provider::requestCount(std::string_view key) const { return server_->requestCount(key); }

bool Provider::waitForRequests(std::string_view key, int count, std::chrono::milliseconds bound) const
{
    return server_->waitForRequests(key, count, bound);
}

std::vector<std::string> Provider::pageRequests(std::string_view path) const { return server_->pageRequests(path); }

void Provider::stop() { server_->stop(); }

}
