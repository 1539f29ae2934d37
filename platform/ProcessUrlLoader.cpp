// SPDX-License-Identifier: MIT
#include "platform/ProcessUrlLoader.h"

#include "platform/Descriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace platform {

namespace {

using Clock = std::chrono::steady_clock;

// A helper takes 13 MB, and a user may ask for any number of refreshes while the provider is silent.
constexpr std::uint64_t maximumHelpers = 4;

bool isReadyInTime(int channel, short event, Clock::time_point end)
{
    pollfd awaited { channel, event, 0 };
    for (;;) {
        auto const left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        int const ready = left > 0 ? ::poll(&awaited, 1, static_cast<int>(left)) : 0;
        if (ready >= 0 || errno != EINTR)
            return ready > 0;
    }
}

bool endsInTime(pid_t process, Clock::time_point end)
{
    Descriptor const ended(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
    return !ended.isOpen() || isReadyInTime(ended.get(), POLLIN, end);
}

bool sendAll(int channel, std::string_view text, Clock::time_point end)
{
    while (!text.empty()) {
        if (!isReadyInTime(channel, POLLOUT, end))
            return false;
        // No signal from a helper that died, and no waiting for one that does not read.
        auto const sent = ::send(channel, text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent < 0 && errno != EINTR && errno != EAGAIN)
            return false;
        text.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(sent, 0)));
    }
    return ::shutdown(channel, SHUT_WR) == 0;
}

bool receiveAll(int channel, std::string& text, Clock::time_point end)
{
    std::array<char, 65536> piece {};
    while (text.size() <= maximumBodySize && isReadyInTime(channel, POLLIN, end)) {
        auto const received = ::recv(channel, piece.data(), piece.size(), MSG_DONTWAIT);
        if (received == 0)
            return true;
        if (received < 0 && errno != EINTR && errno != EAGAIN)
            return false;
        text.append(piece.data(), static_cast<std::size_t>(std::max<ssize_t>(received, 0)));
    }
    return false;
}

bool endedWell(pid_t process)
{
    int status = 0;
    while (::waitpid(process, &status, 0) < 0) {
        if (errno != EINTR)
            return false;
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}

ProcessUrlLoader::ProcessUrlLoader(
    std::filesystem::path helper, std::filesystem::path additionalAuthority, std::chrono::milliseconds limit)
    : helper_(std::move(helper))
    , additionalAuthority_(std::move(additionalAuthority))
    , limit_(limit)
{
    for (char** variable = environ; *variable; ++variable)
        environment_.emplace_back(*variable);
}

std::optional<std::string> ProcessUrlLoader::load(std::string const& url)
{
    if (!isWellFormedUrl(url) || !awaitTurn())
        return std::nullopt;
    auto body = exchange(url);
    endTurn();
    return body;
}

// The numbers keep the loads in the order they came.
bool ProcessUrlLoader::awaitTurn()
{
    std::unique_lock lock(mutex_);
    std::uint64_t const number = came_++;
    turnEnded_.wait(lock, [this, number] { return cancelled_ || number < ended_ + maximumHelpers; });
    return !cancelled_;
}

void ProcessUrlLoader::endTurn()
{
    std::scoped_lock const lock(mutex_);
    ++ended_;
    turnEnded_.notify_all();
}

std::optional<std::string> ProcessUrlLoader::exchange(std::string const& url)
{
    std::array<int, 2> ends {};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
        return std::nullopt;
    Descriptor const channel(ends[0]);
    Descriptor helpersEnd(ends[1]);
    pid_t process = 0;
    if (!start(helpersEnd.get(), process))
        return std::nullopt;
    helpersEnd.close();

    auto const end = Clock::now() + limit_;
    std::string body;
    if (!sendAll(channel.get(), additionalAuthority_.string() + "\n" + url + "\n", end)
        || !receiveAll(channel.get(), body, end) || !endsInTime(process, end))
        ::kill(process, SIGKILL);
    finished(process);
    return endedWell(process) ? std::optional(std::move(body)) : std::nullopt;
}

// Within the lock, so that a cancellation finds the helper or keeps it from being started.
bool ProcessUrlLoader::start(int channel, pid_t& process)
{
    std::scoped_lock const lock(mutex_);
    if (cancelled_)
        return false;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, channel, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, channel, STDOUT_FILENO);
    // The program's libraries have descriptors that a started process would inherit.
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    auto path = helper_.string();
    std::array<char*, 2> const arguments { path.data(), nullptr };
    std::vector<char*> environment;
    for (auto& variable : environment_)
        environment.push_back(variable.data());
    environment.push_back(nullptr);
    bool const started
        = ::posix_spawn(&process, path.c_str(), &actions, nullptr, arguments.data(), environment.data()) == 0;
    posix_spawn_file_actions_destroy(&actions);
    if (started)
        running_.push_back(process);
    return started;
}

void ProcessUrlLoader::finished(pid_t process)
{
    std::scoped_lock const lock(mutex_);
    std::erase(running_, process);
}

void ProcessUrlLoader::cancel()
{
    std::scoped_lock const lock(mutex_);
    cancelled_ = true;
    turnEnded_.notify_all();
    for (pid_t const process : running_)
        ::kill(process, SIGKILL);
}

}
