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

/// A program of our own that reads a text from its standard input and writes its answer to its standard output. It runs
/// anew for each answer, and is gone afterwards with all that the work needs.
class HelperProcess {
public:
    explicit HelperProcess(std::filesystem::path program);

    /// Runs the program and waits for its end. Nothing when it cannot be started, fails, or writes more bytes than the
    /// maximum; one that has not ended within the limit is killed. Any thread, and any number of them at a time.
    std::optional<std::string> answerTo(
        std::string_view text, std::size_t maximumSize, std::chrono::milliseconds limit);

    /// Ends the running ones with nothing, and every later one too. Any thread.
    void cancel();

private:
    bool start(int channel, pid_t& process);
    void finished(pid_t process);

    std::filesystem::path program_;
    /// Ours when this was made: it may change while the program is being started.
    std::vector<std::string> environment_;
    std::mutex mutex_;
    /// Those that run now; one that is waited for is not among them.
    std::vector<pid_t> running_;
    bool cancelled_ = false;
};

}
