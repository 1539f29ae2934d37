// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LoginItem.h"

#include <filesystem>
#include <string>
#include <vector>

/// The program's entry in the XDG autostart folders. A user's entry overrides a system entry of the same name. Main
/// thread only.
class AutostartEntry final : public platform::LoginItem {
public:
    struct Program {
        /// The base name of the entry's file.
        std::string identifier;
        std::string displayName;
        std::filesystem::path file;
    };

    /// Takes the user's autostart folder and the system's, the most important one first.
    AutostartEntry(Program program, std::filesystem::path const& userFolder,
        std::vector<std::filesystem::path> const& systemFolders);

    /// False if the entry is hidden or disabled, or if its program is missing.
    bool isEnabled() const override;
    /// Replaces an existing entry. To disable the system's entry, writes one of the user's that hides it.
    bool setEnabled(bool enabled) override;

private:
    bool isEnabledBySystem() const;
    bool write(std::string const& content) const;
    bool remove() const;
    /// The text of an entry that starts this very program.
    std::string enabledEntry() const;

    Program program_;
    std::filesystem::path userEntry_;
    std::vector<std::filesystem::path> systemEntries_;
};
