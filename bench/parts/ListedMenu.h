// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/DBusMenu.h"

#include <QCoreApplication>

/// A menu that a panel has asked for, with all of its submenus. What it tells goes no further than this: there is no
/// bus.
struct ListedMenu {
    explicit ListedMenu(platform::Menu& model)
        : menu(model)
    {
        DBusMenuLayout layout;
        menu.GetLayout(0, -1, {}, layout);
        QObject::connect(&menu, &DBusMenu::ItemsPropertiesUpdated, &menu,
            [this](QList<DBusMenuProperties> const& updated) { tellsOf += static_cast<std::size_t>(updated.size()); });
    }

    /// Runs the update that waits for the end of the main loop's turn.
    void runQueued() { QCoreApplication::sendPostedEvents(); }

    DBusMenu menu;
    /// How many times a line's new properties were told.
    std::size_t tellsOf = 0;
};
