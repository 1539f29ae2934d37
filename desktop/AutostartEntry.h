// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LoginItem.h"

#include <filesystem>
#include <string>
#include <vector>

/// The program's entry among those that a desktop starts at login, as XDG's autostart has them. An entry of the user's
/// takes the place of a system's entry of that name. Main thread only.
class AutostartEntry final : public platform::LoginItem {
public:
    struct Program {
        /// Names the entry.
        std::string identifier;
        std::string displayName;
        std::filesystem::path file;
    };

    /// The folders hold the entries: the user's own, and the system's, the most important one first.
    AutostartEntry(Program program, std::filesystem::path const& userFolder,
        std::vector<std::filesystem::path> const& systemFolders);

    /// An entry that is hidden, switched off, or whose program is gone counts as none.
    bool isEnabled() const override;
    /// An entry that was there is replaced; where the system has one, it is hidden from this user.
    bool setEnabled(bool enabled) override;

private:
    bool isEnabledBySystem() const;
    bool write(std::string const& content) const;
    bool remove() const;
    /// One that starts this very program.
    std::string enabledEntry() const;

    Program program_;
    std::filesystem::path userEntry_;
    std::vector<std::filesystem::path> systemEntries_;
};
