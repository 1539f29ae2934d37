// SPDX-License-Identifier: MIT
#include "bench/programs/Program.h"

#include "platform/Descriptor.h"

#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int patienceInMilliseconds = 5000;

bool endsInTime(pid_t process)
{
    platform::Descriptor const ended(static_cast<int>(syscall(SYS_pidfd_open, process, 0)));
    pollfd awaited { ended.get(), POLLIN, 0 };
    return poll(&awaited, 1, patienceInMilliseconds) == 1;
}

}

std::unique_ptr<Program> Program::start(char* const* arguments)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, STDERR_FILENO, STDOUT_FILENO);
    pid_t id = 0;
    auto const begin = Clock::now();
    int const error = posix_spawnp(&id, arguments[0], &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        return {};
    return std::unique_ptr<Program>(new Program(id, begin));
}

Program::Program(pid_t id, Clock::time_point begin)
    : id_(id)
    , begin_(begin)
{
}

Program::~Program()
{
    kill(id_, SIGTERM);
    if (!endsInTime(id_))
        kill(id_, SIGKILL);
    waitpid(id_, nullptr, 0);
}
