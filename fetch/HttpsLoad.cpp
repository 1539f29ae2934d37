// SPDX-License-Identifier: MIT
#include "fetch/HttpsLoad.h"

#include "platform/UrlLoader.h"
#include "platform/Utf8.h"

#include <curl/curl.h>

#include <filesystem>
#include <memory>

namespace {

// Limits the headers of all replies, redirects and trailers included. Libcurl keeps each line, and a short one takes
// twenty times its size.
constexpr std::size_t maximumHeaderSize = 512UL * 1024;
constexpr long connectSeconds = 60;
constexpr long stalledSeconds = 60;
constexpr long totalSeconds = 300;
constexpr long maximumRedirects = 10;

using Easy = std::unique_ptr<CURL, decltype(&curl_easy_cleanup)>;

struct Reply {
    std::string body;
    std::size_t headerSize = 0;
};

std::size_t appendToBody(char const* data, std::size_t, std::size_t size, void* reply)
{
    auto& body = static_cast<Reply*>(reply)->body;
    if (body.size() + size > platform::maximumBodySize)
        return 0;
    body.append(data, size);
    return size;
}

std::size_t acceptHeader(char const*, std::size_t, std::size_t size, void* data)
{
    auto& reply = *static_cast<Reply*>(data);
    reply.headerSize += size;
    return reply.headerSize > maximumHeaderSize ? 0 : size;
}

// A folder of hashed names is searched on demand, which is far cheaper than parsing the bundle of all authorities for
// each load. It also leaves the bundle's option free for the additional authority.
void trustAuthorities(CURL* easy, std::string const& additionalAuthority)
{
    char const* folder = nullptr;
    curl_easy_getinfo(easy, CURLINFO_CAPATH, &folder);
    std::error_code error;
    bool const hasFolder = folder && std::filesystem::is_directory(folder, error);
    if (!additionalAuthority.empty())
        curl_easy_setopt(easy, CURLOPT_CAINFO, additionalAuthority.c_str());
    else if (hasFolder)
        curl_easy_setopt(easy, CURLOPT_CAINFO, nullptr);
}

void configure(CURL* easy, std::string const& url, Reply& reply)
{
    curl_easy_setopt(easy, CURLOPT_URL, url.c_str());
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "https");
    curl_easy_setopt(easy, CURLOPT_REDIR_PROTOCOLS_STR, "https");
    curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(easy, CURLOPT_MAXREDIRS, maximumRedirects);
    curl_easy_setopt(easy, CURLOPT_DISALLOW_USERNAME_IN_URL, 1L);
    curl_easy_setopt(easy, CURLOPT_SSLVERSION, CURL_SSLVERSION_TLSv1_2);
    curl_easy_setopt(easy, CURLOPT_SSL_VERIFYPEER, 1L);
    curl_easy_setopt(easy, CURLOPT_SSL_VERIFYHOST, 2L);
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT, connectSeconds);
    curl_easy_setopt(easy, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(easy, CURLOPT_LOW_SPEED_TIME, stalledSeconds);
    curl_easy_setopt(easy, CURLOPT_TIMEOUT, totalSeconds);
    curl_easy_setopt(easy, CURLOPT_ACCEPT_ENCODING, "");
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &appendToBody);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, &reply);
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, &acceptHeader);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, &reply);
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    // A name lookup in progress must not delay the end of a load.
    curl_easy_setopt(easy, CURLOPT_QUICK_EXIT, 1L);
}

}

std::optional<std::string> loadOverHttps(std::string const& url, std::string const& additionalAuthority)
{
    Easy const easy(curl_easy_init(), &curl_easy_cleanup);
    if (!easy)
        return std::nullopt;
    Reply reply;
    configure(easy.get(), url, reply);
    trustAuthorities(easy.get(), additionalAuthority);
    if (curl_easy_perform(easy.get()) != CURLE_OK || !platform::isValidUtf8(reply.body))
        return std::nullopt;
    return std::move(reply.body);
}
