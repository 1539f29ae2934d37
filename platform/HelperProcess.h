// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// A program of ours that reads a text from standard input and writes its answer to standard output. A new process is
/// started for each answer, so that everything the work needs is freed when it exits.
class HelperProcess {
public:
    explicit HelperProcess(std::filesystem::path program);

    /// Runs the program and waits for it to exit. Returns nothing if it cannot be started, fails, or writes more bytes
    /// than the maximum. It is killed if it has not exited within the limit. Thread-safe; several may run at once.
    std::optional<std::string> answerTo(
        std::string_view text, std::size_t maximumSize, std::chrono::milliseconds limit);

    /// Kills the running processes and makes all later calls return nothing. Thread-safe.
    void cancel();

private:
    bool start(int channel, pid_t& process);
    void finished(pid_t process);

    std::filesystem::path program_;
    /// A copy taken on construction, since our own environment may change while the program is being started.
    std::vector<std::string> environment_;
    std::mutex mutex_;
    /// The processes that can still be killed; one that is being reaped is not among them.
    std::vector<pid_t> running_;
    bool cancelled_ = false;
};

}
