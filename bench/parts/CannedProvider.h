// SPDX-License-Identifier: MIT
#pragma once

#include "demo/Reply.h"
#include "platform/UrlLoader.h"

#include <atomic>

/// Answers at once like the stand-in provider: with the report of the key at the end of the URL, or with that of
/// "demohome" for an unknown key.
class CannedProvider final : public platform::UrlLoader {
public:
    static std::string const& report(std::string const& key = "demohome")
    {
        auto const& keys = demo::demoKeys();
        auto const found = keys.find(key);
        return found == keys.end() ? report() : found->second.reply.body;
    }

    std::optional<std::string> load(std::string const& url) override
    {
        ++requests_;
        return report(url.substr(url.rfind('=') + 1));
    }

    int requests() const { return requests_; }

private:
    std::atomic<int> requests_ = 0;
};
