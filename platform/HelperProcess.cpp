// SPDX-License-Identifier: MIT
#include "platform/HelperProcess.h"

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
        // The flags prevent a signal if the helper has died, and blocking if it does not read.
        auto const sent = ::send(channel, text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent < 0 && errno != EINTR && errno != EAGAIN)
            return false;
        text.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(sent, 0)));
    }
    return ::shutdown(channel, SHUT_WR) == 0;
}

bool receiveAll(int channel, std::string& text, std::size_t maximumSize, Clock::time_point end)
{
    std::array<char, 65536> piece {};
    while (text.size() <= maximumSize && isReadyInTime(channel, POLLIN, end)) {
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

HelperProcess::HelperProcess(std::filesystem::path program)
    : program_(std::move(program))
{
    for (char** variable = environ; *variable; ++variable)
        environment_.emplace_back(*variable);
}

std::optional<std::string> HelperProcess::answerTo(
    std::string_view text, std::size_t maximumSize, std::chrono::milliseconds limit)
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

    auto const end = Clock::now() + limit;
    std::string answer;
    if (!sendAll(channel.get(), text, end) || !receiveAll(channel.get(), answer, maximumSize, end)
        || !endsInTime(process, end))
        ::kill(process, SIGKILL);
    finished(process);
    return endedWell(process) ? std::optional(std::move(answer)) : std::nullopt;
}

// Holds the lock, so that cancel() either finds the helper or prevents its start.
bool HelperProcess::start(int channel, pid_t& process)
{
    std::scoped_lock const lock(mutex_);
    if (cancelled_)
        return false;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, channel, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, channel, STDOUT_FILENO);
    // The program's libraries have descriptors that the child would inherit.
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    auto path = program_.string();
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

void HelperProcess::finished(pid_t process)
{
    std::scoped_lock const lock(mutex_);
    std::erase(running_, process);
}

void HelperProcess::cancel()
{
    std::scoped_lock const lock(mutex_);
    cancelled_ = true;
    for (pid_t const process : running_)
        ::kill(process, SIGKILL);
}

}
