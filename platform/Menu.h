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

/// One line of a menu: a command, a text, a separator or a submenu. A line with neither an action nor a submenu is only
/// shown. It belongs to one menu at a time, the last one that took it.
class MenuItem {
public:
    /// A value whose changes are reported to the menu's observers. Setting an equal value has no effect.
    template <typename T> class Field {
    public:
        explicit Field(MenuItem const& line)
            : line_(line)
        {
        }

        T const& get() const { return value_; }

        void set(T value)
        {
            if (value == value_)
                return;
            value_ = std::move(value);
            if (line_.menuChanges_)
                line_.menuChanges_->notify();
        }

    private:
        MenuItem const& line_;
        T value_ {};
    };

    MenuItem() = default;
    MenuItem(MenuItem const&) = delete;
    MenuItem& operator=(MenuItem const&) = delete;

    Field<std::string> title { *this };
    Field<bool> hidden { *this };
    /// Whether the line has a check mark.
    Field<bool> on { *this };

    int tag = 0;
    bool isSeparator = false;
    /// Shown in place of an empty title.
    std::string placeholder;
    Action action;
    /// Not owned; null for a line without a submenu.
    Menu* submenu = nullptr;

    std::string const& shownTitle() const { return title.get().empty() ? placeholder : title.get(); }

    void userClicked() { send(action, this); }

private:
    friend class Menu;

    /// Null while the line belongs to no menu.
    Observers<> const* menuChanges_ = nullptr;
};

/// An ordered list of lines. Replacing its items counts as one change, however many they are.
class Menu {
public:
    using Items = std::vector<std::shared_ptr<MenuItem>>;

    Menu() = default;
    Menu(Menu const&) = delete;
    Menu& operator=(Menu const&) = delete;
    ~Menu() { leaveItems(); }

    /// Called before the menu is shown, if it has lines whose text depends on the time.
    std::function<void()> needsUpdate;

    Items const& items() const { return items_; }

    void setItems(Items items)
    {
        leaveItems();
        items_ = std::move(items);
        // All lines share one list of observers, since a menu can have thousands.
        for (auto const& item : items_)
            item->menuChanges_ = &changes_;
        changes_.notify();
    }

    /// Reports every new list of items and every visible change to one of them, but not changes in submenus.
    Subscription observeChanges(std::function<void()> observer) { return changes_.add(std::move(observer)); }

    void willShow() const
    {
        if (needsUpdate)
            needsUpdate();
    }

private:
    // Skips items that another menu has taken.
    void leaveItems() const
    {
        for (auto const& item : items_) {
            if (item->menuChanges_ == &changes_)
                item->menuChanges_ = nullptr;
        }
    }

    Items items_;
    Observers<> changes_;
};

}
