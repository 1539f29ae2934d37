// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

/// The addresses of the provider's web host, all of them HTTPS.
class ProviderAddresses {
public:
    /// The host's name without the "www" label, with its port where it is not the usual one.
    explicit ProviderAddresses(std::string host)
        : host_(std::move(host))
    {
    }

    /// The usage report of a key. The key is appended unchanged: one that an address cannot hold makes one that cannot
    /// be loaded.
    std::string usageReport(std::string_view usageKey) const;
    /// Which usage key belongs to the connection that asks.
    std::string keyLookup() const;
    /// The page on how to obtain a usage key.
    std::string helpPage() const;

    /// The day-by-day page of a month, from 1 to 12.
    std::string usagePage(int year, int month) const;
    /// Whether a page may lead there: the address of the host over HTTPS stands somewhere in the text.
    bool admitsNavigation(std::string_view url) const;

private:
    std::string host_;
};
