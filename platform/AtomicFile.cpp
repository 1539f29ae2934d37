// SPDX-License-Identifier: MIT
#include "platform/AtomicFile.h"

#include "platform/Descriptor.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <mutex>
#include <thread>

namespace platform {

namespace {

constexpr std::size_t maximumSize = 16UL * 1024 * 1024;

bool writeAll(int descriptor, std::string_view content)
{
    while (!content.empty()) {
        ssize_t const count = ::write(descriptor, content.data(), content.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return false;
        content.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

// A new file of that name in the folder, whatever stood there before: a leftover or a link is removed, not followed.
bool writeUnfinished(int folder, std::string_view content)
{
    ::unlinkat(folder, unfinishedFileName, 0);
    Descriptor const file(
        ::openat(folder, unfinishedFileName, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
    return file.isOpen() && writeAll(file.get(), content) && ::fsync(file.get()) == 0;
}

// Whether the folder may be written to now. Another process holds it for the moment of a save; one that holds it for
// longer than a person would wait is left alone. A file system without locks is written to without one.
bool lockFolder(int folder)
{
    for (int tries = 0; ::flock(folder, LOCK_EX | LOCK_NB) != 0; ++tries) {
        if (errno != EWOULDBLOCK)
            return true;
        if (tries == 80)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

bool replaceFile(int folder, std::filesystem::path const& name, std::string_view content)
{
    if (!writeUnfinished(folder, content) || ::renameat(folder, unfinishedFileName, folder, name.c_str()) != 0) {
        ::unlinkat(folder, unfinishedFileName, 0);
        return false;
    }
    // Should this fail, a power cut may bring back the old file, whole.
    ::fsync(folder);
    return true;
}

}

bool writeFileAtomically(std::filesystem::path const& file, std::string_view content)
{
    if (content.size() > maximumSize)
        return false;
    // The unfinished file belongs to one writer at a time: the mutex sees to it among threads, the lock among
    // processes.
    static std::mutex mutex;
    std::scoped_lock const lock(mutex);
    std::filesystem::path const parent = file.has_parent_path() ? file.parent_path() : ".";
    Descriptor const folder(::open(parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder.isOpen() || !lockFolder(folder.get()))
        return false;
    bool const replaced = replaceFile(folder.get(), file.filename(), content);
    // Closing does not do it: a process that is being started has a copy of the descriptor for a moment.
    ::flock(folder.get(), LOCK_UN);
    return replaced;
}

std::optional<std::string> readFile(std::filesystem::path const& file)
{
    // Opening a fifo would otherwise wait for its writer.
    Descriptor const opened(::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status { };
    if (!opened.isOpen() || ::fstat(opened.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;

    std::string content;
    std::array<char, 65536> piece {};
    while (content.size() <= maximumSize) {
        ssize_t const count = ::read(opened.get(), piece.data(), piece.size());
        if (count == 0)
            return content;
        if (count > 0)
            content.append(piece.data(), static_cast<std::size_t>(count));
        else if (errno != EINTR)
            return std::nullopt;
    }
    return std::nullopt;
}

bool makePrivateFolder(std::filesystem::path const& folder)
{
    // std::filesystem would make them open to everybody first.
    std::filesystem::path made;
    for (std::filesystem::path const& part : folder) {
        made /= part;
        ::mkdir(made.c_str(), S_IRWXU);
    }
    std::error_code error;
    return std::filesystem::is_directory(folder, error);
}

}
