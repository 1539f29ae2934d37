// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/DesktopRunLoop.h"
#include "desktop/LateLibrary.h"
#include "platform/LocaleRules.h"

#include <filesystem>
#include <memory>

/// Loads the rules of locales while something is being formatted, and lets go of them a second later: ICU would be two
/// thirds of the program's memory, for some texts an hour. The toolkit uses ICU itself, so from its coming on the rules
/// stay. One at a time; main thread only.
class LateLocale final {
public:
    LateLocale(DesktopRunLoop& loop, std::filesystem::path const& library);
    ~LateLocale();
    LateLocale(LateLocale const&) = delete;
    LateLocale& operator=(LateLocale const&) = delete;

private:
    std::unique_ptr<platform::LocaleRules> make();
    void letGo();

    DesktopRunLoop& loop_;
    LateLibrary library_;
};
