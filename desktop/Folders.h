// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <vector>

// Where the program and its user keep their files. Main thread only.

/// The program's own file, read once, because an upgrade may replace it. Empty without /proc.
std::filesystem::path const& programFile();

/// A path relative to the program's folder, which is the same in the build folder and in an installation.
std::filesystem::path fromProgram(char const* path);

/// The user's folders by the XDG base directory rules.
std::filesystem::path userConfigFolder();
std::filesystem::path userCacheFolder();

/// The folders of entries that start at login, the user's own and those of the system.
std::filesystem::path userAutostartFolder();
std::vector<std::filesystem::path> systemAutostartFolders();
