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

/// Loads over HTTPS in a process of its own for each load, which is gone afterwards with all that TLS needs. A program
/// that is up all day for a few exchanges a day keeps nothing of it.
class ProcessUrlLoader final : public UrlLoader {
public:
    /// The helper program, and the file of a certificate authority to trust beside the system's, where there is one.
    /// The helper ends a load after five minutes; one that hangs itself is ended at the limit.
    explicit ProcessUrlLoader(std::filesystem::path helper, std::filesystem::path additionalAuthority = {},
        std::chrono::milliseconds limit = std::chrono::seconds(315));

    /// Four loads run at a time. Others wait for their turn in the order they came, as long as it takes.
    std::optional<std::string> load(std::string const& url) override;

    /// Ends the running and the waiting loads with nothing, and every later one too. Any thread.
    void cancel();

private:
    bool awaitTurn();
    void endTurn();

    HelperProcess helper_;
    std::filesystem::path additionalAuthority_;
    std::chrono::milliseconds limit_;
    std::mutex mutex_;
    std::condition_variable turnEnded_;
    /// How many loads have come, and how many of them have had their turn.
    std::uint64_t came_ = 0;
    std::uint64_t ended_ = 0;
    bool cancelled_ = false;
};

}
