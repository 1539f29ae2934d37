// SPDX-License-Identifier: MIT
#include "app/TouchBarMaker.h"

#include "app/Outlets.h"
#include "app/TouchBarIdentifier.h"
#include "platform/Bundle.h"
#include "storage/KeyEntry.h"

#include <algorithm>
#include <utility>

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

TouchBarMaker::TouchBarMaker(platform::Bundle const& bundle, Outlets& outlets, Actions actions)
    : bundle_(bundle)
    , outlets_(outlets)
    , actions_(std::move(actions))
{
}

std::shared_ptr<platform::TouchBar> TouchBarMaker::makeTouchBarWithArray(
    std::vector<std::string> const& connectionIdentifiers)
{
    auto bar = std::make_shared<platform::TouchBar>();
    bar->delegate = this;
    auto& identifiers = bar->defaultItemIdentifiers;
    identifiers = { updateNowIdentifier(bundle_), detailedUsageIdentifier(bundle_),
        std::string(platform::touchBarItemIdentifierFlexibleSpace) };
    identifiers.insert(identifiers.end(), connectionIdentifiers.begin(), connectionIdentifiers.end());
    identifiers.emplace_back(platform::touchBarItemIdentifierOtherItemsProxy);
    return bar;
}

std::unique_ptr<platform::CustomTouchBarItem> TouchBarMaker::makeItemForIdentifier(std::string_view identifier)
{
    auto item = std::make_unique<platform::CustomTouchBarItem>();
    item->identifier = identifier;
    auto& button = item->view;
    if (identifier == updateNowIdentifier(bundle_)) {
        button.title.set(bundle_.localizedString("UPDATE_NOW"));
        button.bezelColor.set(green);
        button.action = actions_.updateNow;
    } else if (identifier == detailedUsageIdentifier(bundle_)) {
        button.title.set(bundle_.localizedString("DETAILED_USAGE_TITLE"));
        button.bezelColor.set(slate);
        button.action = actions_.showDailyUsage;
    } else {
        auto const connection = TouchBarIdentifier::parse(identifier);
        button.title.set(connection.nickname);
        button.highlighted.set(connection.selected);
        button.tag = connection.position;
        button.action = actions_.selectConnection;
    }
    return item;
}

void TouchBarMaker::setTouchBarForAllWindows()
{
    auto const& bar = outlets_.window.touchBar.get();
    outlets_.detailedUsage.window.touchBar.set(bar);
    outlets_.monitorWindow.touchBar.set(bar);
}

void TouchBarMaker::show(std::vector<std::string> const& entries, std::optional<std::string> const& selected)
{
    std::vector<std::string> identifiers;
    for (std::size_t position = 0; position < std::min(entries.size(), maximumConnections); ++position) {
        auto const& entry = entries[position];
        identifiers.push_back(
            touchBarIdentifier(static_cast<int>(position), KeyEntry::parse(entry).nickname, entry == selected));
    }
    outlets_.window.touchBar.set(makeTouchBarWithArray(identifiers));
    setTouchBarForAllWindows();
}
