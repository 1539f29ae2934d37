// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Property.h"
#include "platform/RunLoop.h"
#include "platform/Value.h"

#include <filesystem>
#include <map>
#include <optional>

namespace platform {

/// The user's settings, stored in one property-list file. Changes within one turn of the main loop are written together
/// at its end; a failed write is retried with the next change. Changes that another program makes to the file in the
/// meantime are overwritten. Main thread only.
class UserDefaults {
public:
    /// Reads the file and closes its folder to others. If it is not a valid settings file, it is moved aside rather
    /// than overwritten, and the settings start out empty.
    UserDefaults(std::filesystem::path file, RunLoop& runLoop);

    bool contains(std::string_view key) const { return value(key) != nullptr; }

    /// The stored value of any type, or null if the key is absent.
    Value const* value(std::string_view key) const
    {
        auto const found = values_.find(key);
        return found == values_.end() ? nullptr : &found->second;
    }

    /// The stored value if it has this type, else null.
    template <typename T> T const* get(std::string_view key) const { return entry<T>(values_, key); }

    void set(std::string const& key, Value value);
    void remove(std::string const& key);

    /// Calls the observer on every change of the key's value, with null when it was removed.
    Subscription observeChanges(std::string const& key, std::function<void(Value const*)> observer);

    /// Performs a pending write now.
    void flush();

private:
    void queueWrite();
    void notify(std::string const& key, Value const* value);

    std::filesystem::path file_;
    RunLoop& runLoop_;
    Dictionary values_;
    std::map<std::string, Observers<Value const*>> observers_;
    bool blockedByUnreadableFile_ = false;
    bool unwritten_ = false;
    bool writeQueued_ = false;
};

}
