// SPDX-License-Identifier: MIT
#pragma once

namespace platform {

/// Whether the desktop starts the program when its user logs in. Main thread only.
class LoginItem {
public:
    virtual ~LoginItem() = default;

    /// What stands on disk at this moment, whoever has put it there.
    virtual bool isEnabled() const = 0;
    /// False, with nothing changed, when it cannot be stored.
    virtual bool setEnabled(bool enabled) = 0;
};

}
