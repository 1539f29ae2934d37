// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Descriptor.h"

#include <filesystem>

/// A library of the program's own that is loaded when it is needed. It is opened at once, so that it is the one of this
/// program also after an upgrade.
class LateLibrary {
public:
    explicit LateLibrary(std::filesystem::path const& file);

    bool isLoaded() const { return library_ != nullptr; }
    /// A function of the library, which is loaded if it was not. Nothing if that fails, with a line on standard error.
    template <typename Function> Function find(char const* name) { return reinterpret_cast<Function>(address(name)); }
    /// Nothing of it may be in use.
    void unload();

private:
    void* address(char const* name);

    std::filesystem::path path_;
    platform::Descriptor file_;
    /// As dlopen() has it.
    void* library_ = nullptr;
};
