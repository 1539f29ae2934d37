// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

/// The URLs of the provider's web host, all of them HTTPS.
class ProviderAddresses {
public:
    /// Takes the host's name without the "www" label, and with its port if that is not the default.
    explicit ProviderAddresses(std::string host)
        : host_(std::move(host))
    {
    }

    /// The usage report of a key. The key is appended unchanged, so an invalid one makes a URL that cannot be loaded.
    std::string usageReport(std::string_view usageKey) const;
    /// The lookup of the usage key for the requesting connection.
    std::string keyLookup() const;
    /// The page that explains how to obtain a usage key.
    std::string helpPage() const;

    /// The daily usage page of a month, which counts from 1 to 12.
    std::string usagePage(int year, int month) const;
    /// Whether a page may navigate there: the URL must contain the host's HTTPS address.
    bool admitsNavigation(std::string_view url) const;

private:
    std::string host_;
};
