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
/// a submenu only shows something. It stands in one menu at a time, the last one that took it.
class MenuItem {
public:
    /// A value whose changes the line's menu tells of. Setting an equal value tells nobody.
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
                line_.menuChanges_->tell();
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
    /// Shown as a check mark.
    Field<bool> on { *this };

    int tag = 0;
    bool isSeparator = false;
    /// What a user sees in place of an empty title.
    std::string placeholder;
    Action action;
    /// Not owned; nothing for a line without a submenu.
    Menu* submenu = nullptr;

    std::string const& shownTitle() const { return title.get().empty() ? placeholder : title.get(); }

    void userClicked() { send(action, this); }

private:
    friend class Menu;

    /// Nothing while it stands in no menu.
    Observers<> const* menuChanges_ = nullptr;
};

/// An ordered list of lines. Its items are told about as one change, however many they are.
class Menu {
public:
    using Items = std::vector<std::shared_ptr<MenuItem>>;

    Menu() = default;
    Menu(Menu const&) = delete;
    Menu& operator=(Menu const&) = delete;
    ~Menu() { leaveItems(); }

    /// Called before the menu is shown, where it has lines whose text depends on the moment.
    std::function<void()> needsUpdate;

    Items const& items() const { return items_; }

    void setItems(Items items)
    {
        leaveItems();
        items_ = std::move(items);
        // One list of observers for all lines, since a menu can have thousands.
        for (auto const& item : items_)
            item->menuChanges_ = &changes_;
        changes_.tell();
    }

    /// Tells of every new list of items, and of every change to what one of them shows; not of its submenu's.
    Subscription observeChanges(std::function<void()> observer) { return changes_.add(std::move(observer)); }

    void willShow() const
    {
        if (needsUpdate)
            needsUpdate();
    }

private:
    // But for those that have gone into another menu.
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
