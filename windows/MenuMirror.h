// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/OncePerTurn.h"
#include "platform/Menu.h"

#include <QActionGroup>
#include <QMenu>

/// A menu in our own windows that shows a model and passes on the user's clicks. It is updated at the end of each
/// main-loop turn. The model and its submenus must outlive it. Main thread only.
class MenuMirror : public QMenu {
    Q_OBJECT

public:
    MenuMirror(platform::Menu& menu, platform::RunLoop& runLoop, QWidget* parent = nullptr);

private:
    void synchronize();
    void show(platform::MenuItem const& item, bool isChoice, QAction& action);
    void showSubmenu(platform::Menu* submenu, QAction& action);
    void click(QAction* action);

    platform::Menu& menu_;
    platform::RunLoop& runLoop_;
    /// The lines as shown, so that a click goes to the line that the user saw.
    platform::Menu::Items shown_;
    QActionGroup choice_ { this };
    OncePerTurn update_;
    platform::Subscription changes_;
};
