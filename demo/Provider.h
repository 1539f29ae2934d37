// SPDX-License-Identifier: MIT
#pragma once

#include "demo/Certificate.h"
#include "demo/Reply.h"

#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace demo {

/// A stand-in for the Internet provider: the usage report and the help and usage pages on "localhost", the key lookup
/// on "www.localhost", over HTTPS on loopback. Every operation may be called on any thread.
class Provider {
public:
    /// Serves on the port of 127.0.0.1, a free one for 0. Nothing when the port is taken or the certificate unusable.
    static std::unique_ptr<Provider> start(CertificateFiles const& files, int port = 0);

    /// Stops.
    ~Provider();
    Provider(Provider const&) = delete;
    Provider& operator=(Provider const&) = delete;

    int port() const;

    /// "localhost:PORT", the value of the bundle's ProviderHost.
    std::string host() const;

    /// What the key is answered from now on; a key that was never set and is none of the demo's gets no figures.
    void setReply(std::string key, Reply reply);
    void setReport(std::string key, std::string body);

    /// What the key lookup is answered from now on.
    void setLookup(std::string body);

    /// What the path ("/support/usage") is answered from now on, whatever follows it, in place of the provider's own.
    void setPage(std::string path, Reply reply);

    /// How many reports the key was asked for, those held back or broken off included.
    int requestCount(std::string_view key) const;

    /// Waits until the count is reached; false when it is not within the bound.
    bool waitForRequests(std::string_view key, int count, std::chrono::milliseconds bound) const;

    /// What was asked for under the path so far, in order and with the queries ("/support/usage?year=2026&month=11").
    std::vector<std::string> pageRequests(std::string_view path) const;

    /// Breaks off what is held back, and ends. Later calls do nothing.
    void stop();

private:
    class Server;

    explicit Provider(std::unique_ptr<Server> server);

    std::unique_ptr<Server> server_;
};

}
