// SPDX-License-Identifier: MIT
#include "windows/MenuMirror.h"

#include "desktop/Text.h"
#include "windows/Text.h"

#include <QAction>

#include <algorithm>

MenuMirror::MenuMirror(platform::Menu& menu, platform::RunLoop& runLoop, QWidget* parent)
    : QMenu(parent)
    , menu_(menu)
    , runLoop_(runLoop)
    , update_(runLoop, [this] { synchronize(); })
    , changes_(menu.observeChanges([this] { update_.request(); }))
{
    connect(this, &QMenu::aboutToShow, this, [this] {
        menu_.willShow();
        synchronize();
    });
    synchronize();
}

void MenuMirror::synchronize()
{
    shown_ = menu_.items();
    auto lines = actions();
    while (lines.size() > static_cast<qsizetype>(shown_.size()))
        delete lines.takeLast();
    while (lines.size() < static_cast<qsizetype>(shown_.size())) {
        auto* const action = new QAction(this);
        connect(action, &QAction::triggered, this, [this, action] { click(action); });
        addAction(action);
        lines.push_back(action);
    }
    bool const hasMark = std::ranges::any_of(shown_, [](auto const& item) { return item->on.get(); });
    for (std::size_t i = 0; i < shown_.size(); ++i)
        show(*shown_[i], hasMark, *lines[static_cast<qsizetype>(i)]);
}

void MenuMirror::show(platform::MenuItem const& item, bool isChoice, QAction& action)
{
    action.setText(asLabel(asMenuLine(item.shownTitle())));
    action.setSeparator(item.isSeparator);
    action.setVisible(!item.hidden.get());
    action.setCheckable(isChoice && !item.isSeparator);
    // A group makes Qt draw radio buttons.
    action.setActionGroup(action.isCheckable() ? &choice_ : nullptr);
    action.setChecked(item.on.get());
    showSubmenu(item.submenu, action);
}

void MenuMirror::showSubmenu(platform::Menu* submenu, QAction& action)
{
    auto* const present = qobject_cast<MenuMirror*>(action.menu());
    if (present && submenu == &present->menu_)
        return;
    delete present;
    if (submenu)
        action.setMenu(new MenuMirror(*submenu, runLoop_, this));
}

void MenuMirror::click(QAction* action)
{
    auto const lines = actions();
    auto const item = shown_.at(static_cast<std::size_t>(lines.indexOf(action)));
    // The toolkit has moved the mark by itself, but only the model decides where it is.
    for (std::size_t i = 0; i < shown_.size(); ++i)
        lines[static_cast<qsizetype>(i)]->setChecked(shown_[i]->on.get());
    item->userClicked();
}
