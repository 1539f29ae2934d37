// SPDX-License-Identifier: MIT
#include "tests/support/TlsServer.h"

#include "demo/Certificate.h"

#include <csignal>
#include <sys/socket.h>

namespace {

demo::CertificateTerms termsOf(ServerCertificate certificate)
{
    demo::CertificateTerms terms;
    if (certificate == ServerCertificate::expired)
        terms.validUntil = std::chrono::minutes(-1);
    if (certificate == ServerCertificate::wrongHost)
        terms.hosts = { "elsewhere.example" };
    return terms;
}

}

TlsServer::TlsServer(std::filesystem::path const& folder, ServerCertificate certificate, Handler handler)
    : handler_(std::move(handler))
    , context_(SSL_CTX_new(TLS_server_method()), &SSL_CTX_free)
    , listening_(BIO_new_accept("127.0.0.1:0"), &BIO_free)
{
    demo::CertificateFiles const files = demo::makeCertificate(folder, termsOf(certificate)).value();
    authority_ = files.authority;
    SSL_CTX_use_certificate_file(context_.get(), files.certificate.c_str(), SSL_FILETYPE_PEM);
    SSL_CTX_use_PrivateKey_file(context_.get(), files.privateKey.c_str(), SSL_FILETYPE_PEM);
    std::signal(SIGPIPE, SIG_IGN); // A client may hang up while it is written to.
    BIO_do_accept(listening_.get()); // The first call only listens.
    thread_ = std::jthread([this] { serve(); });
}

// Ends the waiting for clients, and with it the thread.
TlsServer::~TlsServer() { ::shutdown(static_cast<int>(BIO_get_fd(listening_.get(), nullptr)), SHUT_RDWR); }

void TlsServer::serve()
{
    while (BIO_do_accept(listening_.get()) == 1) {
        ++connections_;
        BIO* const tls = BIO_push(BIO_new_ssl(context_.get(), 0), BIO_pop(listening_.get()));
        // A request without a body comes in one piece.
        std::string request(4096, ' ');
        if (BIO_read(tls, request.data(), static_cast<int>(request.size())) > 0) {
            std::size_t const path = request.find('/');
            std::string const reply = handler_(request.substr(path, request.find(' ', path) - path));
            BIO_write(tls, reply.data(), static_cast<int>(reply.size()));
            BIO_ssl_shutdown(tls);
        }
        BIO_free_all(tls);
    }
}
