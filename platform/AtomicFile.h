// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

/// What an unfinished file is called, the same in every folder: what a killed process left behind is taken away by the
/// next save.
inline constexpr char const* unfinishedFileName = ".unfinished";

/// Replaces a file's whole content, readable by its owner alone. Whenever it is interrupted, the file is the old one
/// or the new one. False, with the old file in place, when anything fails, when another process keeps the folder locked
/// for about a second, or when the content is larger than a file that readFile() reads. The folder must exist. Any
/// thread.
bool writeFileAtomically(std::filesystem::path const& file, std::string_view content);

/// The content of a regular file of at most 16 MiB; nothing when it is anything else or cannot be read. Any thread.
std::optional<std::string> readFile(std::filesystem::path const& file);

/// Makes a folder with its parents, open to its owner alone; false if it is not there afterwards. Any thread.
bool makePrivateFolder(std::filesystem::path const& folder);

}
