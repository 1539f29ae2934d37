// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/DesktopRunLoop.h"

#include <QSocketNotifier>

/// Has the toolkit's event loop run the main loop beside its own events, also from within a loop of a menu or a dialog.
/// Main thread only.
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
