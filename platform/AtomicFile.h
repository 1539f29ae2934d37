// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

/// The size in bytes of the largest file that is read or written. It is the same for both, so that settings and reports
/// that were written can be read again.
inline constexpr std::size_t maximumFileSize = 9UL * 1024 * 1024;

/// What an unfinished file is called, the same in every folder: what a killed process left behind is taken away by the
/// next save.
inline constexpr char const* unfinishedFileName = ".unfinished";

/// Replaces a file's whole content, readable by its owner alone. Whenever it is interrupted, the file is the old one
/// or the new one. False, with the old file in place, when anything fails, when another process is saving in the folder
/// for about a second, or when the content is larger than maximumFileSize. The folder must exist. Any thread.
bool writeFileAtomically(std::filesystem::path const& file, std::string_view content);

/// The content of a regular file of at most maximumFileSize; nothing when it is anything else or cannot be read. Any
/// thread.
std::optional<std::string> readFile(std::filesystem::path const& file);

/// Makes a folder with its parents, those that are missing open to their owner alone; false if it is not there
/// afterwards. Any thread.
bool makeFolder(std::filesystem::path const& folder);

/// Takes all rights in a folder from the group and from others, unless it belongs to another user or is a link. Where
/// that cannot be done, nothing happens. Any thread.
void closeFolderToOthers(std::filesystem::path const& folder);

/// Makes a folder like makeFolder(), and closes one that was there already to others.
bool makePrivateFolder(std::filesystem::path const& folder);

}
