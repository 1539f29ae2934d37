// SPDX-License-Identifier: MIT
// The controller's part in the touch bar: its items, their buttons, and the windows that show it.
#include "platform/TouchBar.h"
#include "app/AppDelegate.h"
#include "app/Outlets.h"
#include "detail/DetailedUsageViewController.h"
#include "platform/Bundle.h"
#include "platform/Platform.h"
#include "storage/KeyEntry.h"
#include "ui/TouchBarIdentifier.h"

#include <algorithm>

namespace {

// The bar has no room for more.
constexpr std::size_t maximumConnections = 10;
constexpr platform::Color green { 133, 200, 75 };
constexpr platform::Color slate { 50, 50, 75 };

std::string updateNowIdentifier(platform::Bundle const& bundle) { return bundle.identifier() + ".forceupdate"; }
std::string detailedUsageIdentifier(platform::Bundle const& bundle)
{
    return bundle.identifier() + ".detailedusagetouch";
}

}

std::shared_ptr<platform::TouchBar> AppDelegate::makeTouchBar() { return makeTouchBarWithArray({}); }

std::shared_ptr<platform::TouchBar> AppDelegate::makeTouchBarWithArray(
    std::vector<std::string> const& connectionIdentifiers)
{
    auto bar = std::make_shared<platform::TouchBar>();
    bar->delegate = this;
    auto& identifiers = bar->defaultItemIdentifiers;
    identifiers = { updateNowIdentifier(platform_.bundle), detailedUsageIdentifier(platform_.bundle),
        std::string(platform::touchBarItemIdentifierFlexibleSpace) };
    identifiers.insert(identifiers.end(), connectionIdentifiers.begin(), connectionIdentifiers.end());
    identifiers.emplace_back(platform::touchBarItemIdentifierOtherItemsProxy);
    return bar;
}

std::unique_ptr<platform::CustomTouchBarItem> AppDelegate::makeItemForIdentifier(std::string_view identifier)
{
    auto item = std::make_unique<platform::CustomTouchBarItem>();
    item->identifier = identifier;
    auto& button = item->view;
    if (identifier == updateNowIdentifier(platform_.bundle)) {
        button.title.set(text("UPDATE_NOW"));
        button.bezelColor.set(green);
        button.action = [this](platform::Sender) { updateButton(); };
    } else if (identifier == detailedUsageIdentifier(platform_.bundle)) {
        button.title.set(text("DETAILED_USAGE_TITLE"));
        button.bezelColor.set(slate);
        button.action = [this](platform::Sender sender) { viewDailyUsageDataButton(sender); };
    } else {
        auto const connection = TouchBarIdentifier::parse(identifier);
        button.title.set(connection.nickname);
        button.highlighted.set(connection.selected);
        button.tag = connection.position;
        button.action = [this](platform::Sender sender) { doSelectSubMenuWithMenuItem(sender); };
    }
    return item;
}

bool AppDelegate::setTouchBarForAllWindows()
{
    auto const& bar = outlets_.window.touchBar.get();
    if (detailedUsageController_)
        outlets_.detailedUsage.window.touchBar.set(bar);
    outlets_.monitorWindow.touchBar.set(bar);
    return true;
}

void AppDelegate::showTouchBar(std::vector<std::string> const& connectionIdentifiers)
{
    outlets_.window.touchBar.set(makeTouchBarWithArray(connectionIdentifiers));
    setTouchBarForAllWindows();
}

std::vector<std::string> AppDelegate::touchBarConnections() const
{
    auto const& entries = outlets_.tarvoUsageKeysComboBox.items.get();
    auto const selected = getCurrentlySelectedKey();
    std::vector<std::string> identifiers;
    for (std::size_t position = 0; position < std::min(entries.size(), maximumConnections); ++position) {
        auto const& entry = entries[position];
        identifiers.push_back(
            touchBarIdentifier(static_cast<int>(position), KeyEntry::parse(entry).nickname, entry == selected));
    }
    return identifiers;
}
