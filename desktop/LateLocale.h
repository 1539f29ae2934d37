// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/DesktopRunLoop.h"
#include "desktop/LateLibrary.h"
#include "platform/LocaleRules.h"

#include <filesystem>
#include <memory>

/// Loads the locale rules while something is being formatted and unloads them a second later. ICU would take two thirds
/// of the program's memory, for a few texts an hour. Once the toolkit is loaded, which uses ICU itself, the rules stay.
/// Only one instance may exist. Main thread only.
class LateLocale final {
public:
    LateLocale(DesktopRunLoop& loop, std::filesystem::path const& library);
    ~LateLocale();
    LateLocale(LateLocale const&) = delete;
    LateLocale& operator=(LateLocale const&) = delete;

private:
    std::unique_ptr<platform::LocaleRules> make();
    void release();

    DesktopRunLoop& loop_;
    LateLibrary library_;
};
