// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/DesktopRunLoop.h"

#include <QSocketNotifier>

/// Makes the toolkit's event loop, including the nested loops of menus and dialogs, run the main loop's events. Main
/// thread only.
class ToolkitLoop final {
public:
    explicit ToolkitLoop(DesktopRunLoop& loop)
        : due_(loop.descriptor(), QSocketNotifier::Read)
    {
        QObject::connect(&due_, &QSocketNotifier::activated, &due_, [&loop] { loop.runDue(); });
    }

private:
    QSocketNotifier due_;
};
