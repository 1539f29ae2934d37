// SPDX-License-Identifier: MIT
#include "desktop/MenuObserver.h"

MenuObserver::MenuObserver(platform::Menu& menu, std::function<void()> observer)
    : menu_(menu)
    , observer_(std::move(observer))
    , list_(menu.observeChanges([this] {
        observeItems();
        observer_();
    }))
{
    observeItems();
}

void MenuObserver::observeItems()
{
    items_.clear();
    items_.reserve(menu_.items().size() * 3);
    for (auto const& item : menu_.items()) {
        items_.push_back(item->title.observeChanges([this](std::string const&) { observer_(); }));
        items_.push_back(item->hidden.observeChanges([this](bool) { observer_(); }));
        items_.push_back(item->on.observeChanges([this](bool) { observer_(); }));
    }
}
