// SPDX-License-Identifier: MIT
#include "desktop/LateLibrary.h"

#include <cstdio>
#include <dlfcn.h>
#include <fcntl.h>
#include <string>
#include <utility>

LateLibrary::LateLibrary(std::filesystem::path const& file)
    : path_(file)
    , file_(::open(file.c_str(), O_RDONLY | O_CLOEXEC))
{
}

void* LateLibrary::address(char const* name)
{
    if (!library_)
        library_ = ::dlopen(("/proc/self/fd/" + std::to_string(file_.get())).c_str(), RTLD_NOW | RTLD_LOCAL);
    auto* const address = library_ ? ::dlsym(library_, name) : nullptr;
    if (!address)
        std::fprintf(stderr, "usage-meter: cannot load %s: %s\n", path_.c_str(), ::dlerror());
    return address;
}

void LateLibrary::unload()
{
    if (library_)
        ::dlclose(std::exchange(library_, nullptr));
}
