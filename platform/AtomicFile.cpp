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
// can open. A locked file belongs to another process that is saving. An unlocked one was left by a killed process; it
// is removed while this process holds its lock, so that a new save's file is never removed by mistake. The name may
// come to mean another file before the lock is taken, so it is checked after locking, and again before renaming. Links
// and other users' files are removed without being opened. On a file system without locks, files are written without
// one.
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

// Returns false if something cannot be removed. A file that another process is writing is left for that process to
// remove.
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
    // If this fails, a power cut may bring back the old file, but not a damaged one.
    ::fsync(folder);
    return true;
}

// Returns whether the file was replaced, or nothing if another process interfered.
std::optional<bool> tryToReplace(int folder, std::filesystem::path const& name, std::string_view content)
{
    Descriptor const file(
        ::openat(folder, unfinishedFileName, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!file.isOpen())
        return errno == EEXIST && removeLeftover(folder) ? std::nullopt : std::optional(false);
    if (!tryToLock(file.get()) || !isInPlace(folder, file.get()))
        return std::nullopt;
    bool const isReplaced = finish(folder, file.get(), name, content);
    // Closing is not enough, since a child process that is just being started briefly has a copy of the descriptor.
    ::flock(file.get(), LOCK_UN);
    return isReplaced;
}

}

bool writeFileAtomically(std::filesystem::path const& file, std::string_view content)
{
    if (content.size() > maximumFileSize)
        return false;
    // Threads of this process wait for each other without a time limit.
    static std::mutex mutex;
    std::scoped_lock const lock(mutex);
    std::filesystem::path const parent = file.has_parent_path() ? file.parent_path() : ".";
    Descriptor const folder(::open(parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder.isOpen())
        return false;
    // Another process holds the lock only while saving. If it takes longer than a user would wait, give up.
    for (int tries = 0; tries < 80; ++tries) {
        if (auto const isReplaced = tryToReplace(folder.get(), file.filename(), content))
            return *isReplaced;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

std::optional<std::string> readFile(std::filesystem::path const& file)
{
    // Without O_NONBLOCK, opening a FIFO would wait for a writer.
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
    // std::filesystem would create the folders with access for everybody.
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
