// SPDX-License-Identifier: MIT
#include "desktop/Folders.h"

#include "desktop/Environment.h"
#include "platform/Split.h"

namespace {

constexpr char const* autostart = "autostart";

std::filesystem::path userFolder(char const* variable, char const* inHome)
{
    // By the XDG rules, a relative path is ignored.
    std::filesystem::path const folder = environmentText(variable);
    auto const home = environmentText("HOME");
    return folder.is_absolute() ? folder : std::filesystem::path(home.empty() ? "/" : home) / inHome;
}

}

std::filesystem::path const& programFile()
{
    static std::error_code error;
    static auto const file = std::filesystem::read_symlink("/proc/self/exe", error);
    return file;
}

std::filesystem::path fromProgram(char const* path) { return (programFile().parent_path() / path).lexically_normal(); }

std::filesystem::path userConfigFolder() { return userFolder("XDG_CONFIG_HOME", ".config"); }
std::filesystem::path userCacheFolder() { return userFolder("XDG_CACHE_HOME", ".cache"); }

std::filesystem::path userAutostartFolder() { return userConfigFolder() / autostart; }

std::vector<std::filesystem::path> systemAutostartFolders()
{
    auto folders = environmentText("XDG_CONFIG_DIRS");
    if (folders.empty())
        folders = "/etc/xdg";
    std::vector<std::filesystem::path> autostartFolders;
    for (auto const folder : platform::split(folders, ':'))
        autostartFolders.push_back(std::filesystem::path(folder) / autostart);
    return autostartFolders;
}
