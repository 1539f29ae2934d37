// SPDX-License-Identifier: MIT
// The controller's part in the preferences window.
#include "app/AppDelegate.h"
#include "app/Outlets.h"
#include "storage/CacheData.h"

void AppDelegate::updateDesign()
{
    constexpr platform::Color white { 255, 255, 255 };
    for (auto* const toggle : { &outlets_.usageCapToggle, &outlets_.lastUpdateToggle, &outlets_.remainingUsageToggle,
             &outlets_.nextUpdateToggle, &outlets_.onlyKeyNicknamesToggle, &outlets_.showNotificationsToggle,
             &outlets_.startAtLoginToggle })
        toggle->titleColor.set(white);
}

void AppDelegate::doUpdateUsageCapText()
{
    auto const entry = getCurrentlySelectedKey();
    auto const cap = entry ? usageCaps_.usageCapForKey(*entry) : std::nullopt;
    outlets_.usageLimit.text.set(cap.value_or(std::string()));
}

void AppDelegate::clearCache() { cacheData().clearCache(); }

void AppDelegate::clearCacheButton()
{
    clearCache();
    cacheClearedMessage_.show();
}

void AppDelegate::changeOnlyKeyNicknames()
{
    if (outlets_.tarvoUsageKeysComboBox.items.get().size() >= 2)
        doUpdateSubMenu();
}

void AppDelegate::changeStatusBarDropdown()
{
    if (!display_.isWaiting() && usageDictionary_)
        display_.showStatusTitle(currentFigures());
}
