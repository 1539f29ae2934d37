// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Descriptor.h"

#include <filesystem>

/// A library of the program that is loaded on demand. Its file is opened on construction, so that an upgrade cannot
/// replace it.
class LateLibrary {
public:
    explicit LateLibrary(std::filesystem::path const& file);

    bool isLoaded() const { return library_ != nullptr; }
    /// Returns a function of the library, loading that if necessary. On failure prints a line to standard error and
    /// returns null.
    template <typename Function> Function find(char const* name) { return reinterpret_cast<Function>(address(name)); }
    /// Unloads the library, which must no longer be in use.
    void unload();

private:
    void* address(char const* name);

    std::filesystem::path path_;
    platform::Descriptor file_;
    /// The handle returned by dlopen().
    void* library_ = nullptr;
};
