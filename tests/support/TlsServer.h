// SPDX-License-Identifier: MIT
#pragma once

#include <openssl/ssl.h>

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <thread>

enum class ServerCertificate { good, expired, wrongHost };

/// An HTTPS server on a free loopback port. It answers one connection after another with the bytes its handler gives
/// for a path, status line and all, so it can misbehave in any way; while the handler waits, so do all clients.
class TlsServer {
public:
    using Handler = std::function<std::string(std::string const& path)>;

    TlsServer(std::filesystem::path const& folder, ServerCertificate certificate, Handler handler);
    ~TlsServer();

    std::string address() const { return std::string("https://localhost:") + BIO_get_accept_port(listening_.get()); }
    /// The PEM file of the authority that signed its certificate.
    std::filesystem::path const& authority() const { return authority_; }
    /// How many came, whatever became of them.
    int connections() const { return connections_; }

private:
    void serve();

    std::filesystem::path authority_;
    Handler handler_;
    std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context_;
    std::unique_ptr<BIO, decltype(&BIO_free)> listening_;
    std::atomic<int> connections_ = 0;
    std::jthread thread_;
};
