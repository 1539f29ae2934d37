// SPDX-License-Identifier: MIT
#include "ui/MainLayout.h"

#include "app/AppDelegate.h"
#include "app/Outlets.h"
#include "platform/Binding.h"
#include "platform/Bundle.h"
#include "platform/NumberFormatter.h"
#include "platform/UserDefaults.h"
#include "storage/SettingsKeys.h"
#include "ui/CapReading.h"

namespace {

// In hours.
constexpr int maximumInterval = 24;
std::vector<std::string> intervalTitles(platform::Bundle const& bundle, std::string const& numberLocale)
{
    std::vector<std::string> titles { bundle.localizedString("INTERVAL_NEVER"),
        bundle.localizedString("INTERVAL_HOUR") };
    platform::NumberFormatter const numbers(numberLocale);
    for (int hours = 2; hours <= maximumInterval; ++hours)
        titles.push_back(
            platform::withArgument(bundle.localizedString("INTERVAL_HOURS", hours), numbers.string(hours)));
    return titles;
}

std::shared_ptr<platform::MenuItem> separator()
{
    auto item = std::make_shared<platform::MenuItem>();
    item->isSeparator = true;
    return item;
}

}

MainLayout::MainLayout(Outlets& outlets, platform::Bundle const& bundle, platform::UserDefaults& userDefaults,
    std::string const& numberLocale)
    : outlets_(outlets)
    , bundle_(bundle)
{
    showInitialState();
    fillChoices(numberLocale);
    bindSettings(userDefaults);
    followFields(numberLocale);
}

void MainLayout::showInitialState()
{
    outlets_.window.title.set(bundle_.localizedString("PREFERENCES_TITLE"));
    outlets_.addKeyWindow.title.set(bundle_.localizedString("ADD_KEY_TITLE"));
    outlets_.monitorWindow.title.set(bundle_.localizedString("TARVO_TITLE_NEW"));
    outlets_.changeConnectionMenuItem->title.set(bundle_.localizedString("CHANGE_CONNECTION"));
    for (auto const& [item, label] : { std::pair(outlets_.usageCapMenuItem, "USAGE_CAP"),
             std::pair(outlets_.remainingUsageMenuItem, "REMAINING_USAGE") })
        item->title.set(bundle_.labelledString(label, bundle_.localizedString("SELECT_KEY")));
    // These lines have nothing to show before the first report.
    for (auto const& item : { outlets_.uploadedMenuItem, outlets_.usageCapMenuItem, outlets_.remainingUsageMenuItem,
             outlets_.changeConnectionMenuItem })
        item->hidden.set(true);
    for (auto* const toggle : { &outlets_.usageCapToggle, &outlets_.remainingUsageToggle, &outlets_.lastUpdateToggle,
             &outlets_.nextUpdateToggle })
        toggle->on.set(true);
    outlets_.usageBar.hidden.set(true);
    outlets_.usageBar.opacity.set(0.0);
    outlets_.usageCapPercentageText.hidden.set(true);
    outlets_.usageCapPercentageText.opacity.set(0.0);
    outlets_.cacheClearedText.text.set(bundle_.localizedString("CACHE_CLEARED"));
    outlets_.cacheClearedText.hidden.set(true);
    outlets_.setCapButton.hidden.set(true);
    outlets_.detailedUsageButton.tag = detailedUsageButtonTag;
}

void MainLayout::fillChoices(std::string const& numberLocale)
{
    outlets_.updateIntervalPopupButton.items.set(intervalTitles(bundle_, numberLocale));
    outlets_.statusBarDropdown.items.set({ bundle_.localizedString("TITLE_USED"), bundle_.localizedString("TITLE_FREE"),
        bundle_.localizedString("TITLE_TOTAL"), bundle_.localizedString("TITLE_REMAINING") });
}

void MainLayout::bindSettings(platform::UserDefaults& userDefaults)
{
    auto const keep = [&](char const* key, auto& control) {
        bindings_.push_back(platform::bindToSetting(userDefaults, key, control));
    };
    keep(settings::tarvoKeySelected, outlets_.tarvoUsageKeysComboBox);
    keep(settings::menuBarSelector, outlets_.statusBarDropdown);
    keep(settings::hourUpdateInterval, outlets_.updateIntervalPopupButton);
    keep(settings::showNotificationsMenu, outlets_.showNotificationsToggle);
    keep(settings::showUsageCap, outlets_.usageCapToggle);
    keep(settings::showRemainingUsage, outlets_.remainingUsageToggle);
    keep(settings::showLastUpdate, outlets_.lastUpdateToggle);
    keep(settings::showNextUpdate, outlets_.nextUpdateToggle);
    keep(settings::showOnlyNicknames, outlets_.onlyKeyNicknamesToggle);
    keep(settings::preferencesWindowPlace, outlets_.window);
    keep(settings::usageWindowPlace, outlets_.monitorWindow);
    keep(settings::dailyUsageWindowPlace, outlets_.detailedUsage.window);
}

void MainLayout::followFields(std::string const& numberLocale)
{
    bindings_.push_back(showCapReading(outlets_, bundle_, numberLocale));
    bindings_.push_back(outlets_.tarvoUsageKeysComboBox.text.observe(
        [this](std::string const& entry) { outlets_.removeKeyButton.enabled.set(!entry.empty()); }));
}

void MainLayout::wire(AppDelegate& controller)
{
    fillMenu(controller);
    auto const wireButton = [&controller](platform::Button& button, void (AppDelegate::*operation)()) {
        button.action = [&controller, operation](platform::Sender) { (controller.*operation)(); };
    };
    wireButton(outlets_.useConnectionButton, &AppDelegate::useConnection);
    wireButton(outlets_.addKeyButton, &AppDelegate::addKeyButton);
    wireButton(outlets_.removeKeyButton, &AppDelegate::removeKeyButton);
    wireButton(outlets_.clearCacheButton, &AppDelegate::clearCacheButton);
    wireButton(outlets_.setCapButton, &AppDelegate::showPreferences);
    wireButton(outlets_.confirmKeyButton, &AppDelegate::addKeyAction);
    auto& sheet = controller.addKeySheet();
    outlets_.autoRetrieveCodeButton.action = [&sheet](platform::Sender) { sheet.autoRetrieveCodeButton(); };
    outlets_.getUsageCodeButton.action = [&sheet](platform::Sender) { sheet.getUsageCode(); };
    outlets_.cancelButton.action = [&sheet](platform::Sender) { sheet.cancelButton(); };
    outlets_.detailedUsageButton.action
        = [&controller](platform::Sender sender) { controller.viewDailyUsageDataButton(sender); };
    outlets_.window.closeAction = [&controller] { controller.closePreferences(); };
    outlets_.addKeyWindow.closeAction = [&sheet] { sheet.cancelButton(); };
    auto const showBy = [](platform::CheckBox& toggle, Outlets::MenuItem const& item) {
        toggle.action = [&toggle, item] { item->hidden.set(!toggle.on.get()); };
    };
    showBy(outlets_.usageCapToggle, outlets_.usageCapMenuItem);
    showBy(outlets_.remainingUsageToggle, outlets_.remainingUsageMenuItem);
    showBy(outlets_.lastUpdateToggle, outlets_.lastUpdateMenuItem);
    showBy(outlets_.nextUpdateToggle, outlets_.nextUpdateMenuItem);
    outlets_.onlyKeyNicknamesToggle.action = [&controller] { controller.changeOnlyKeyNicknames(); };
    outlets_.statusBarDropdown.action = [&controller] { controller.changeStatusBarDropdown(); };
    outlets_.updateIntervalPopupButton.action = [&controller] { controller.doChangeUpdateIntervalDropdown(); };
    // The cap is set in the preferences window.
    outlets_.usageCapMenuItem->action = [&controller](platform::Sender) { controller.clickMenuItem(); };
}

void MainLayout::fillMenu(AppDelegate& controller)
{
    auto const item = [this](char const* titleKey, platform::Action action) {
        auto made = std::make_shared<platform::MenuItem>();
        made->title.set(bundle_.localizedString(titleKey));
        made->action = std::move(action);
        return made;
    };
    auto const command = [&](char const* titleKey, void (AppDelegate::*operation)()) {
        return item(titleKey, [&controller, operation](platform::Sender) { (controller.*operation)(); });
    };
    outlets_.changeConnectionMenuItem->submenu = &outlets_.connectionMenu;
    // Every group keeps at least one visible line, so that no two separators meet.
    outlets_.dropDownMenu.setItems({
        outlets_.downloadedMenuItem,
        outlets_.freeDownloadedMenuItem,
        outlets_.uploadedMenuItem,
        outlets_.totalUsageMenuItem,
        outlets_.usageCapMenuItem,
        outlets_.remainingUsageMenuItem,
        outlets_.lastUpdateMenuItem,
        outlets_.nextUpdateMenuItem,
        separator(),
        outlets_.changeConnectionMenuItem,
        command("UPDATE_NOW", &AppDelegate::updateButton),
        separator(),
        command("USAGE_WINDOW", &AppDelegate::showUsageWindow),
        item("DETAILED_USAGE_TITLE",
            [&controller](platform::Sender sender) { controller.viewDailyUsageDataButton(sender); }),
        command("PREFERENCES", &AppDelegate::showPreferences),
        separator(),
        command("QUIT", &AppDelegate::quitButton),
    });
}
