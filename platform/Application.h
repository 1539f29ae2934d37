// SPDX-License-Identifier: MIT
#pragma once

namespace platform {

/// The running program as the desktop sees it. Main thread only.
class Application {
public:
    virtual ~Application() = default;

    /// Brings the program's key window in front of other programs' windows.
    virtual void activateIgnoringOtherApps() = 0;
    /// Ends the program at once.
    virtual void terminate() = 0;
};

}
