// SPDX-License-Identifier: MIT
#pragma once

namespace platform {

/// Whether the desktop starts the program when the user logs in. Main thread only.
class LoginItem {
public:
    virtual ~LoginItem() = default;

    /// Reads the current state from disk, whoever set it.
    virtual bool isEnabled() const = 0;
    /// Returns false, with nothing changed, if it cannot be stored.
    virtual bool setEnabled(bool enabled) = 0;
};

}
