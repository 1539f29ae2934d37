// SPDX-License-Identifier: MIT
#include "tests/support/TlsServer.h"

#include "demo/Certificate.h"

#include <array>
#include <csignal>
#include <sys/socket.h>

TlsServer::TlsServer(std::filesystem::path const& folder, ServerFault fault, Handler handler, std::string const& port)
    : fault_(fault)
    , handler_(std::move(handler))
    , context_(SSL_CTX_new(TLS_server_method()), &SSL_CTX_free)
    , listening_(BIO_new_accept(("127.0.0.1:" + port).c_str()), &BIO_free)
{
    demo::CertificateTerms terms;
    if (fault == ServerFault::wrongHost)
        terms.hosts = { "elsewhere.example" };
    demo::CertificateFiles const files = demo::makeCertificate(folder, terms).value();
    authority_ = files.authority;
    SSL_CTX_use_certificate_file(context_.get(), files.certificate.c_str(), SSL_FILETYPE_PEM);
    SSL_CTX_use_PrivateKey_file(context_.get(), files.privateKey.c_str(), SSL_FILETYPE_PEM);
    if (fault == ServerFault::oldProtocol) {
        SSL_CTX_set_security_level(context_.get(), 0);
        SSL_CTX_set_min_proto_version(context_.get(), TLS1_VERSION);
        SSL_CTX_set_max_proto_version(context_.get(), TLS1_VERSION);
    }
    std::signal(SIGPIPE, SIG_IGN); // A client may hang up while it is written to.
    BIO_set_bind_mode(listening_.get(), BIO_BIND_REUSEADDR);
    BIO_do_accept(listening_.get()); // The first call only listens.
    thread_ = std::jthread([this] { serve(); });
}

// Ends the wait for clients, and so the thread.
TlsServer::~TlsServer() { ::shutdown(static_cast<int>(BIO_get_fd(listening_.get(), nullptr)), SHUT_RDWR); }

void TlsServer::serve()
{
    while (BIO_do_accept(listening_.get()) == 1) {
        ++connections_;
        BIO* const socket = BIO_pop(listening_.get());
        BIO* const tls = fault_ == ServerFault::plain ? nullptr : BIO_new_ssl(context_.get(), 0);
        answer({ tls ? BIO_push(tls, socket) : socket, &BIO_free_all });
    }
}

void TlsServer::answer(Connection connection)
{
    std::string request;
    std::array<char, 4096> piece {};
    do {
        int const size = BIO_read(connection.get(), piece.data(), piece.size());
        if (size <= 0)
            return;
        request.append(piece.data(), static_cast<std::size_t>(size));
    } while (fault_ != ServerFault::plain && !request.ends_with("\r\n\r\n"));
    std::size_t const path = request.find('/');
    TlsReply const reply
        = handler_(fault_ == ServerFault::plain ? "" : request.substr(path, request.find(' ', path) - path));

    auto const send = [&](std::string const& text) {
        return !text.empty() && BIO_write(connection.get(), text.data(), static_cast<int>(text.size())) > 0;
    };
    send(reply.text);
    while (send(reply.repeated))
        std::this_thread::sleep_for(reply.pause);
    if (reply.ending == Ending::closed)
        BIO_ssl_shutdown(connection.get());
    SSL* tls = nullptr;
    if (BIO_get_ssl(connection.get(), &tls) == 1)
        SSL_set_quiet_shutdown(tls, 1);
    linger const atOnce { 1, 0 };
    if (reply.ending == Ending::reset)
        ::setsockopt(
            static_cast<int>(BIO_get_fd(connection.get(), nullptr)), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    if (reply.ending == Ending::silent)
        silent_.push_back(std::move(connection));
}
