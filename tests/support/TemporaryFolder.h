// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <filesystem>
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

private:
    std::filesystem::path path_;
};
