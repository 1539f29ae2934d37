// SPDX-License-Identifier: MIT
#pragma once

#include "platform/HelperProcess.h"
#include "platform/UrlLoader.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <mutex>

namespace platform {

/// Runs each HTTPS load in its own process, so that the memory TLS needs is freed afterwards. The program stays up all
/// day but loads only a few times a day.
class ProcessUrlLoader final : public UrlLoader {
public:
    /// Takes the helper program and, optionally, a certificate authority's file to trust in addition to the system's.
    /// The helper gives up after five minutes; if it hangs, it is killed at the limit.
    explicit ProcessUrlLoader(std::filesystem::path helper, std::filesystem::path additionalAuthority = {},
        std::chrono::milliseconds limit = std::chrono::seconds(315));

    /// Runs at most four loads at once. Further ones wait in order, for as long as it takes.
    std::optional<std::string> load(std::string const& url) override;

    /// Makes running, waiting and later loads return nothing. Thread-safe.
    void cancel();

private:
    bool awaitTurn();
    void endTurn();

    HelperProcess helper_;
    std::filesystem::path additionalAuthority_;
    std::chrono::milliseconds limit_;
    std::mutex mutex_;
    std::condition_variable turnEnded_;
    /// The number of loads that have arrived, and of those that have had their turn.
    std::uint64_t came_ = 0;
    std::uint64_t ended_ = 0;
    bool cancelled_ = false;
};

}
