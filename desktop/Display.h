// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/DesktopRunLoop.h"

#include <memory>
#include <string>

/// A connection to the display on which our windows would come up, which tells when the display goes. Nothing of the
/// toolkit is needed for it. Main thread only.
class Display {
public:
    virtual ~Display() = default;

    /// Connects to the display that the toolkit would choose: Wayland's, else X11's, or what QT_QPA_PLATFORM names. One
    /// that has no connection, such as "offscreen", is always there. Nothing if there is no display to connect to. Its
    /// going is told once, from the main loop.
    static std::unique_ptr<Display> connect(DesktopRunLoop& loop, platform::Task const& gone);

    /// What a user calls the display that connect() looks for.
    static std::string name();

    /// Whether somebody runs a tray of the kind that was there before StatusNotifierItem panels.
    virtual bool hasOlderTray() const { return false; }
};
