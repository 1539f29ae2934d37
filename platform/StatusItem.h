// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Property.h"

#include <string>

namespace platform {

class Menu;

/// The program's place in the status area: a short text with a menu.
class StatusItem {
public:
    explicit StatusItem(Menu& menu)
        : menu_(menu)
    {
    }

    Property<std::string> title;

    Menu& menu() const { return menu_; }

private:
    Menu& menu_;
};

}
