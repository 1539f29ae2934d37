// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/FullDisk.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sys/stat.h>
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
        { "nothing around the folder", [&] { fs::remove_all(around); } },
        { "a file for the folder", [&] { std::ofstream(emptied(folder)) << "file"; } },
        { "a folder for the file", [&] { fs::create_directories(emptied(file) / "inside"); } },
        { "a fifo", [&] { ::mkfifo(emptied(file).c_str(), 0666); } },
        { "a file that nobody may read", [&] { fs::permissions(file, fs::perms::none); } },
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
        for (fs::path const& place : { folder, file }) {
            if (!fs::exists(asideOf(place)))
                continue;
            fs::remove_all(place);
            fs::rename(asideOf(place), place);
        }
        run(after);
    }
}
