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

/// A stand-in for the Internet provider, over HTTPS on loopback: the usage report and the help and usage pages on
/// "localhost", the key lookup on "www.localhost". All functions are thread-safe.
class Provider {
public:
    /// Serves on this port of 127.0.0.1, or on a free one if it is 0. Returns null if the port is taken or the
    /// certificate unusable.
    static std::unique_ptr<Provider> start(CertificateFiles const& files, int port = 0);

    ~Provider();
    Provider(Provider const&) = delete;
    Provider& operator=(Provider const&) = delete;

    int port() const;

    /// "localhost:PORT", the value of the bundle's ProviderHost.
    std::string host() const;

    /// Sets the reply for a key from now on. A key that was never set and is not one of the demo's gets no figures.
    void setReply(std::string key, Reply reply);
    void setReport(std::string key, std::string body);

    /// Sets the reply for the key lookup from now on.
    void setLookup(std::string body);

    /// Sets the reply for a path ("/support/usage") and any query from now on, in place of the provider's own page.
    void setPage(std::string path, Reply reply);

    /// The number of requests for the key's report, including those that are held back or cut off.
    int requestCount(std::string_view key) const;

    /// Waits until the count is reached. Returns false on timeout.
    bool waitForRequests(std::string_view key, int count, std::chrono::milliseconds bound) const;

    /// The requests for the path so far, in order and with their queries ("/support/usage?year=2026&month=11").
    std::vector<std::string> pageRequests(std::string_view path) const;

    /// Cuts off the replies that are held back, and stops. Later calls do nothing.
    void stop();

private:
    class Server;

    explicit Provider(std::unique_ptr<Server> server);

    std::unique_ptr<Server> server_;
};

}
