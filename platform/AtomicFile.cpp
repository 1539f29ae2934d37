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
#include <tuple>

namespace platform {

namespace {

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

// The unfinished file is its own lock. Other users could open and lock the folder, but not a file that only its owner
// may open. A locked one belongs to another process that is saving. An unlocked one was left by a killed process; it is
// removed while this process holds its lock, so that a new save's file is never removed in its place. The name may have
// come to mean another file before the lock was taken, so it is checked then, and again before the renaming. Links and
// files of other users are removed without being opened. A file system that has no locks is written to without one.
bool tryToLock(int file) { return ::flock(file, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK; }

bool isInPlace(int folder, int file)
{
    struct stat opened {};
    struct stat named {};
    return ::fstat(file, &opened) == 0 && ::fstatat(folder, unfinishedFileName, &named, AT_SYMLINK_NOFOLLOW) == 0
        && opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

bool belongsToTheUserAlone(struct stat const& file)
{
    constexpr mode_t privateFile = S_IFREG | S_IRUSR | S_IWUSR;
    return file.st_mode == privateFile && file.st_uid == ::geteuid() && file.st_nlink == 1;
}

// False if there is something that cannot be removed. What another process writes to stays, and goes by itself.
bool removeLeftover(int folder)
{
    struct stat status {};
    if (::fstatat(folder, unfinishedFileName, &status, AT_SYMLINK_NOFOLLOW) != 0)
        return errno == ENOENT;
    if (!belongsToTheUserAlone(status))
        return ::unlinkat(folder, unfinishedFileName, 0) == 0;
    Descriptor const file(::openat(folder, unfinishedFileName, O_RDWR | O_NOFOLLOW | O_CLOEXEC));
    bool const isLeft = file.isOpen() && tryToLock(file.get()) && isInPlace(folder, file.get());
    return !isLeft || ::unlinkat(folder, unfinishedFileName, 0) == 0;
}

bool finish(int folder, int file, std::filesystem::path const& name, std::string_view content)
{
    bool const isWritten = writeAll(file, content) && ::fsync(file) == 0;
    if (!isInPlace(folder, file))
        return false;
    if (!isWritten || ::renameat(folder, unfinishedFileName, folder, name.c_str()) != 0) {
        ::unlinkat(folder, unfinishedFileName, 0);
        return false;
    }
    // Should this fail, a power cut may bring back the old file, whole.
    ::fsync(folder);
    return true;
}

// Whether the file was replaced; nothing if another process was in the way.
std::optional<bool> tryToReplace(int folder, std::filesystem::path const& name, std::string_view content)
{
    Descriptor const file(
        ::openat(folder, unfinishedFileName, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!file.isOpen())
        return errno == EEXIST && removeLeftover(folder) ? std::nullopt : std::optional(false);
    if (!tryToLock(file.get()) || !isInPlace(folder, file.get()))
        return std::nullopt;
    bool const isReplaced = finish(folder, file.get(), name, content);
    // Closing does not do it: a process that is being started has a copy of the descriptor for a moment.
    ::flock(file.get(), LOCK_UN);
    return isReplaced;
}

}

bool writeFileAtomically(std::filesystem::path const& file, std::string_view content)
{
    if (content.size() > maximumFileSize)
        return false;
    // Threads wait for each other as long as it takes.
    static std::mutex mutex;
    std::scoped_lock const lock(mutex);
    std::filesystem::path const parent = file.has_parent_path() ? file.parent_path() : ".";
    Descriptor const folder(::open(parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder.isOpen())
        return false;
    // Another process is there for the moment of a save. One that takes longer than a person would wait is left alone.
    for (int tries = 0; tries < 80; ++tries) {
        if (auto const isReplaced = tryToReplace(folder.get(), file.filename(), content))
            return *isReplaced;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

std::optional<std::string> readFile(std::filesystem::path const& file)
{
    // Opening a fifo would otherwise wait for its writer.
    Descriptor const opened(::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!opened.isOpen() || ::fstat(opened.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;

    std::string content;
    std::array<char, 65536> piece {};
    while (content.size() <= maximumFileSize) {
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

bool makeFolder(std::filesystem::path const& folder)
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

void closeFolderToOthers(std::filesystem::path const& folder)
{
    struct stat status {};
    if (::lstat(folder.c_str(), &status) != 0 || !S_ISDIR(status.st_mode) || status.st_uid != ::geteuid())
        return;
    constexpr mode_t othersRights = S_IRWXG | S_IRWXO;
    if ((status.st_mode & othersRights) != 0)
        std::ignore
            = ::fchmodat(AT_FDCWD, folder.c_str(), status.st_mode & ~(S_IFMT | othersRights), AT_SYMLINK_NOFOLLOW);
}

bool makePrivateFolder(std::filesystem::path const& folder)
{
    bool const isThere = makeFolder(folder);
    closeFolderToOthers(folder);
    return isThere;
}

}
