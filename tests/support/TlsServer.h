// SPDX-License-Identifier: MIT
#pragma once

#include <openssl/ssl.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

/// What is wrong with a server whatever it is asked. A plain one answers the first bytes that come, without TLS.
enum class ServerFault { none, wrongHost, oldProtocol, plain };

/// How a connection ends: in order, without TLS's farewell, with a TCP reset, or not as long as there is the server.
enum class Ending { closed, cutOff, reset, silent };

struct TlsReply {
    std::string text;
    Ending ending = Ending::closed;
    /// Follows the text again and again until the client hangs up.
    std::string repeated = {};
    std::chrono::milliseconds pause = {};
};

/// An HTTPS server on a loopback port, a free one for 0. It answers one connection after another with the bytes its
/// handler gives for a path, status line and all, so it can misbehave in any way; while the handler waits, so do all
/// clients.
class TlsServer {
public:
    using Handler = std::function<TlsReply(std::string const& path)>;

    TlsServer(std::filesystem::path const& folder, ServerFault fault, Handler handler, std::string const& port = "0");
    ~TlsServer();

    std::string port() const { return BIO_get_accept_port(listening_.get()); }
    std::string address() const { return "https://localhost:" + port(); }
    /// The PEM file of the authority that signed its certificate.
    std::filesystem::path const& authority() const { return authority_; }
    /// The number of connections, whatever became of them.
    int connections() const { return connections_; }

private:
    using Connection = std::unique_ptr<BIO, decltype(&BIO_free_all)>;

    void serve();
    void answer(Connection connection);

    std::filesystem::path authority_;
    ServerFault fault_;
    Handler handler_;
    std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context_;
    std::unique_ptr<BIO, decltype(&BIO_free)> listening_;
    std::vector<Connection> silent_;
    std::atomic<int> connections_ = 0;
    std::jthread thread_;
};
