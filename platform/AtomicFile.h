// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

/// The size in bytes of the largest file that is read or written. Both share one limit, so that whatever was written
/// can be read again.
inline constexpr std::size_t maximumFileSize = 9UL * 1024 * 1024;

/// The name of an unfinished file. It is the same for every file of a folder, so that the next save removes what a
/// killed process left behind.
inline constexpr char const* unfinishedFileName = ".unfinished";

/// Replaces a file's whole content and makes it readable by its owner only. An interruption at any point leaves either
/// the old file or the new one. Returns false, with the old file in place, if anything fails, if another process keeps
/// saving in the folder for about a second, or if the content is larger than maximumFileSize. The folder must exist.
/// Thread-safe.
bool writeFileAtomically(std::filesystem::path const& file, std::string_view content);

/// Returns the content of a regular file of at most maximumFileSize, or nothing if it is anything else or cannot be
/// read. Thread-safe.
std::optional<std::string> readFile(std::filesystem::path const& file);

/// Creates a folder and its missing parents, accessible to their owner only. Returns false if the folder does not exist
/// afterwards. Thread-safe.
bool makeFolder(std::filesystem::path const& folder);

/// Revokes all access of the group and of others to a folder, unless it belongs to another user or is a link. Errors
/// are ignored. Thread-safe.
void closeFolderToOthers(std::filesystem::path const& folder);

/// Creates a folder like makeFolder(), and closes an existing one to others.
bool makePrivateFolder(std::filesystem::path const& folder);

}
