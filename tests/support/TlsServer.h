// SPDX-License-Identifier: MIT
#pragma once

#include "demo/Certificate.h"

#include <openssl/ssl.h>

#include <array>
#include <atomic>
#include <csignal>
#include <functional>
#include <sys/socket.h>
#include <thread>

/// What is wrong with a server whatever it is asked. A plain one answers the first bytes that come, without TLS.
enum class ServerFault { none, wrongHost, plain };

struct TlsReply {
    std::string text;
    /// Follows the text again and again until the client hangs up.
    std::string repeated = {};
    std::chrono::milliseconds pause = {};
    /// Whether the connection then lasts as long as the server.
    bool staysOpen = false;
};

/// An HTTPS server on a free loopback port. It answers one connection after another with the bytes its handler gives
/// for a path, status line and all, so it can misbehave in any way; while the handler waits, so do all clients.
class TlsServer {
public:
    using Handler = std::function<TlsReply(std::string const& path)>;

    TlsServer(std::filesystem::path const& folder, ServerFault fault, Handler handler)
        : fault_(fault)
        , handler_(std::move(handler))
    {
        demo::CertificateTerms terms;
        if (fault == ServerFault::wrongHost)
            terms.hosts = { "elsewhere.example" };
        files_ = demo::makeCertificate(folder, terms).value();
        SSL_CTX_use_certificate_file(context_.get(), files_.certificate.c_str(), SSL_FILETYPE_PEM);
        SSL_CTX_use_PrivateKey_file(context_.get(), files_.privateKey.c_str(), SSL_FILETYPE_PEM);
        std::signal(SIGPIPE, SIG_IGN); // A client may hang up while it is written to.
        BIO_do_accept(listening_.get()); // The first call only listens.
        thread_ = std::jthread([this] { serve(); });
    }

    // Ends the wait for clients, and so the thread.
    ~TlsServer() { ::shutdown(static_cast<int>(BIO_get_fd(listening_.get(), nullptr)), SHUT_RDWR); }

    std::string address() const { return std::string("https://localhost:") + BIO_get_accept_port(listening_.get()); }
    /// The PEM file of the authority that signed its certificate.
    std::filesystem::path const& authority() const { return files_.authority; }
    /// The number of connections, whatever became of them.
    int connections() const { return connections_; }

private:
    using Connection = std::unique_ptr<BIO, decltype(&BIO_free_all)>;

    void serve()
    {
        while (BIO_do_accept(listening_.get()) == 1) {
            ++connections_;
            BIO* const socket = BIO_pop(listening_.get());
            bool const isPlain = fault_ == ServerFault::plain;
            answer({ isPlain ? socket : BIO_push(BIO_new_ssl(context_.get(), 0), socket), &BIO_free_all });
        }
    }

    void answer(Connection connection)
    {
        std::array<char, 4096> request {};
        if (BIO_read(connection.get(), request.data(), request.size() - 1) <= 0)
            return;
        std::string const line = request.data(), path = line.substr(line.find(' ') + 1);
        TlsReply const reply = handler_(path.substr(0, path.find(' ')));
        auto const send = [&](std::string const& text) {
            return !text.empty() && BIO_write(connection.get(), text.data(), static_cast<int>(text.size())) > 0;
        };
        send(reply.text);
        while (send(reply.repeated))
            std::this_thread::sleep_for(reply.pause);
        if (reply.staysOpen)
            open_.push_back(std::move(connection));
    }

    ServerFault fault_;
    Handler handler_;
    demo::CertificateFiles files_;
    std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context_ { SSL_CTX_new(TLS_server_method()), &SSL_CTX_free };
    Connection listening_ { BIO_new_accept("127.0.0.1:0"), &BIO_free_all };
    std::vector<Connection> open_;
    std::atomic<int> connections_ = 0;
    std::jthread thread_;
};
