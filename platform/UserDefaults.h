// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Property.h"
#include "platform/RunLoop.h"
#include "platform/Value.h"

#include <filesystem>
#include <map>
#include <optional>

namespace platform {

/// The user's settings, kept in one property-list file. The changes of one turn of the main loop become one write at
/// its end; a write that fails is tried again with the next change. What another program changes in the file meanwhile
/// is overwritten. Main thread only.
class UserDefaults {
public:
    /// Reads the file, and closes its folder to others. A file that cannot be read as settings is moved aside, never
    /// overwritten, and there are none then.
    UserDefaults(std::filesystem::path file, RunLoop& runLoop);

    bool contains(std::string_view key) const { return value(key) != nullptr; }

    /// The stored value, of whatever type; nothing when the key is absent.
    Value const* value(std::string_view key) const
    {
        auto const found = values_.find(key);
        return found == values_.end() ? nullptr : &found->second;
    }

    /// The stored value if it is of this type, else nothing.
    template <typename T> T const* get(std::string_view key) const { return entry<T>(values_, key); }

    void set(std::string const& key, Value value);
    void remove(std::string const& key);

    /// Tells of every change of that key's value; nothing when it was removed.
    Subscription observeChanges(std::string const& key, std::function<void(Value const*)> observer);

    /// Makes a pending write now.
    void flush();

private:
    void queueWrite();
    void tell(std::string const& key, Value const* value);

    std::filesystem::path file_;
    RunLoop& runLoop_;
    Dictionary values_;
    std::map<std::string, Observers<Value const*>> observers_;
    bool blockedByUnreadableFile_ = false;
    bool unwritten_ = false;
    bool writeQueued_ = false;
};

}
