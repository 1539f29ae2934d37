// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Property.h"
#include "platform/Sender.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace platform {

class Menu;

/// One line of a menu: a command, a text, a separator or the way into a submenu. A line without an action and without
/// a submenu only shows something.
class MenuItem {
public:
    Property<std::string> title;
    Property<bool> hidden { false };
    /// Shown as a check mark.
    Property<bool> on { false };

    int tag = 0;
    bool isSeparator = false;
    Action action;
    /// Not owned; nothing for a line without a submenu.
    Menu* submenu = nullptr;

    void userClicked() { send(action, this); }
};

/// An ordered list of lines. Its items are told about as one change, however many they are.
class Menu {
public:
    using Items = std::vector<std::shared_ptr<MenuItem>>;

    /// Called before the menu is shown, where it has lines whose text depends on the moment.
    std::function<void()> needsUpdate;

    Items const& items() const { return items_; }

    void setItems(Items items)
    {
        items_ = std::move(items);
        changes_.tell();
    }

    /// Tells of every new list of items. What an item shows is observed at the item.
    Subscription observeChanges(std::function<void()> observer) { return changes_.add(std::move(observer)); }

    void willShow() const
    {
        if (needsUpdate)
            needsUpdate();
    }

private:
    Items items_;
    Observers<> changes_;
};

}
