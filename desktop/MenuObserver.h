// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Menu.h"

#include <functional>
#include <vector>

/// Tells of every change to the lines of one menu: a new list, or a line's text, mark or visibility. What stands in
/// its submenus is not looked at. Main thread only.
class MenuObserver {
public:
    MenuObserver(platform::Menu& menu, std::function<void()> observer);

private:
    void observeItems();

    platform::Menu& menu_;
    std::function<void()> observer_;
    platform::Subscription list_;
    std::vector<platform::Subscription> items_;
};
