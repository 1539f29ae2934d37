// SPDX-License-Identifier: MIT
// The library's way in.
#include "windows/DesktopWindows.h"

extern "C" Q_DECL_EXPORT void makeUsageMeterWindows(WindowsContext const& context, std::unique_ptr<Windows>& made)
{
    Toolkit::reportFailedStart(context.toolkitFailed);
    made = std::make_unique<DesktopWindows>(context);
}
