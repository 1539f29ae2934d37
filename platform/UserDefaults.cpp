// SPDX-License-Identifier: MIT
#include "platform/UserDefaults.h"

#include "platform/AtomicFile.h"
#include "platform/PropertyList.h"

#include <string>
#include <utility>

namespace platform {

namespace {

// Renames the file to "preferences.plist.damaged", or appends the first free number.
bool moveAside(std::filesystem::path const& file)
{
    std::filesystem::path const first = file.string() + ".damaged";
    std::filesystem::path aside = first;
    std::error_code error;
    for (int number = 2; std::filesystem::exists(std::filesystem::symlink_status(aside, error)); ++number)
        aside = first.string() + '-' + std::to_string(number);
    std::filesystem::rename(file, aside, error);
    return !error;
}

bool isAbsent(std::filesystem::path const& file)
{
    std::error_code error;
    return std::filesystem::symlink_status(file, error).type() == std::filesystem::file_type::not_found;
}

}

UserDefaults::UserDefaults(std::filesystem::path file, RunLoop& runLoop)
    : file_(std::move(file))
    , runLoop_(runLoop)
{
    closeFolderToOthers(file_.parent_path());
    // A file that cannot be opened may be intact. It is left in place until there is something to write.
    std::optional<std::string> const bytes = readFile(file_);
    if (!bytes) {
        blockedByUnreadableFile_ = !isAbsent(file_);
        return;
    }
    if (std::optional<Dictionary> stored = readPropertyList(*bytes))
        values_ = std::move(*stored);
    else
        blockedByUnreadableFile_ = !moveAside(file_);
}

void UserDefaults::set(std::string const& key, Value value)
{
    auto const* const stored = this->value(key);
    if (stored && *stored == value)
        return;
    values_.insert_or_assign(key, value);
    queueWrite();
    notify(key, &value);
}

void UserDefaults::remove(std::string const& key)
{
    if (values_.erase(key) == 0)
        return;
    queueWrite();
    notify(key, nullptr);
}

Subscription UserDefaults::observeChanges(std::string const& key, std::function<void(Value const*)> observer)
{
    return observers_[key].add(std::move(observer));
}

void UserDefaults::flush()
{
    if (!unwritten_)
        return;
    if (blockedByUnreadableFile_)
        blockedByUnreadableFile_ = !isAbsent(file_) && !moveAside(file_);
    unwritten_ = blockedByUnreadableFile_ || !makePrivateFolder(file_.parent_path())
        || !writeFileAtomically(file_, writePropertyList(values_));
}

void UserDefaults::queueWrite()
{
    unwritten_ = true;
    if (std::exchange(writeQueued_, true))
        return;
    runLoop_.perform([this] {
        writeQueued_ = false;
        flush();
    });
}

void UserDefaults::notify(std::string const& key, Value const* value)
{
    if (auto const found = observers_.find(key); found != observers_.end())
        found->second.notify(value);
}

}
