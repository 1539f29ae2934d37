// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/DesktopRunLoop.h"

#include <memory>
#include <string>

/// A connection to the display that our windows would use, which reports when the display is lost. It does not need the
/// toolkit. Main thread only.
class Display {
public:
    virtual ~Display() = default;

    /// Connects to the display that the toolkit would choose: Wayland, else X11, or what QT_QPA_PLATFORM names. A
    /// platform without a connection, such as "offscreen", is always available. Returns null if there is no display to
    /// connect to. Its loss is reported once, from the main loop.
    static std::unique_ptr<Display> connect(DesktopRunLoop& loop, platform::Task const& gone);

    /// A readable name for the display that connect() would use.
    static std::string name();

    /// Whether an older system tray (from before StatusNotifierItem) is running.
    virtual bool hasOlderTray() const { return false; }
};
