// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/FullDisk.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <tuple>
#include <unistd.h>
#include <utility>
#include <vector>

/// While it lives, root can do no more to files than anybody else.
class OrdinaryUser {
public:
    static uid_t id() { return ::getuid() == 0 ? 65534 : ::getuid(); }

    OrdinaryUser() { std::ignore = ::seteuid(id()); }
    OrdinaryUser(OrdinaryUser const&) = delete;
    OrdinaryUser& operator=(OrdinaryUser const&) = delete;
    ~OrdinaryUser() { std::ignore = ::seteuid(::getuid()); }
};

/// Runs three tasks as an ordinary user for each of many faults of a file, of its folder and of the folder around that:
/// before it, while it lasts, and when it is gone and what was put out of the way is back.
inline void withEachDiskFault(std::filesystem::path const& file, std::function<void()> const& before,
    std::function<void()> const& during, std::function<void()> const& after)
{
    namespace fs = std::filesystem;
    fs::path const folder = file.parent_path(), around = folder.parent_path();
    auto const asideOf = [](fs::path const& place) { return fs::path(place.string() + ".aside"); };
    auto const emptied = [&](fs::path const& place) {
        fs::rename(place, asideOf(place));
        return place;
    };
    bool isFull = false;
    std::vector<std::pair<char const*, std::function<void()>>> const faults {
        { "a folder that nobody may enter", [&] { fs::permissions(folder, fs::perms::none); } },
        { "a folder that nobody may write to", [&] { fs::permissions(folder, fs::perms(0500)); } },
        { "somebody else's folder", [&] { std::ignore = ::chown(folder.c_str(), ::getuid(), ::getgid()); } },
        { "no folder", [&] { fs::remove_all(folder); } },
        { "nothing around the folder", [&] { fs::remove_all(around); } },
        { "a file for the folder around", [&] { std::ofstream(emptied(around)) << "file"; } },
        { "a file for the folder", [&] { std::ofstream(emptied(folder)) << "file"; } },
        { "a dangling link for the folder", [&] { fs::create_symlink("nowhere", emptied(folder)); } },
        { "a link loop for the folder", [&] { fs::create_symlink(folder, emptied(folder)); } },
        { "a folder for the file", [&] { fs::create_directories(emptied(file) / "inside"); } },
        { "a dangling link for the file", [&] { fs::create_symlink("nowhere", emptied(file)); } },
        { "a link loop for the file", [&] { fs::create_symlink(file, emptied(file)); } },
        { "a fifo", [&] { ::mkfifo(emptied(file).c_str(), 0666); } },
        { "a socket", [&] { ::mknod(emptied(file).c_str(), S_IFSOCK | 0666, 0); } },
        { "a device", [&] { ::mknod(emptied(file).c_str(), S_IFCHR | 0666, ::makedev(1, 5)); } },
        { "a file that nobody may read", [&] { fs::permissions(file, fs::perms::none); } },
        { "somebody else's file", [&] { std::ignore = ::chown(file.c_str(), ::getuid(), ::getgid()); } },
        { "a full disk", [&] { isFull = true; } },
    };
    std::ignore = ::chown(around.parent_path().c_str(), OrdinaryUser::id(), ::getgid());
    for (auto const& [what, begin] : faults) {
        SCOPED_TRACE(what);
        auto const run = [](auto const& task) {
            OrdinaryUser const user;
            task();
        };
        run(before);
        begin();
        std::exchange(isFull, false) ? withFullDisk([&] { run(during); }) : run(during);
        if (::chown(folder.c_str(), OrdinaryUser::id(), ::getgid()) == 0)
            fs::permissions(folder, fs::perms(0700));
        for (fs::path const& place : { around, folder, file }) {
            if (!fs::exists(asideOf(place)))
                continue;
            fs::remove_all(place);
            fs::rename(asideOf(place), place);
        }
        run(after);
    }
}
