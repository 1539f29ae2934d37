// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

/// An empty folder of its own for a test, gone with all that is in it afterwards.
class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::string name = std::filesystem::temp_directory_path() / ("usage-meter-test-" + std::string(6, 'X'));
        path_ = ::mkdtemp(name.data());
    }
    TemporaryFolder(TemporaryFolder const&) = delete;
    TemporaryFolder& operator=(TemporaryFolder const&) = delete;
    ~TemporaryFolder()
    {
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }

    std::filesystem::path const& path() const { return path_; }

    /// A shell script for a program's place.
    std::filesystem::path script(std::string const& lines) const
    {
        std::ofstream(path_ / "script") << "#!/bin/sh\n" << lines << '\n';
        std::filesystem::permissions(path_ / "script", std::filesystem::perms::owner_all);
        return path_ / "script";
    }

private:
    std::filesystem::path path_;
};
