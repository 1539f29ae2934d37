// SPDX-License-Identifier: MIT
// The controller's part in the preferences window.
#include "app/AppDelegate.h"
#include "app/Outlets.h"
#include "platform/Bundle.h"
#include "platform/LeadingNumber.h"
#include "platform/LoginItem.h"
#include "platform/Platform.h"
#include "storage/CacheData.h"

#include <algorithm>

namespace {

using namespace std::chrono_literals;

constexpr platform::Seconds messageFade = 1500ms;
constexpr platform::Seconds messageStay = 5s;

// Whether a cap has only digits and a point, so that the user reads it as the same number as the program.
bool readsAsItLooks(std::string_view cap)
{
    bool const isNumber
        = cap.find_first_not_of("0123456789.") == std::string_view::npos && std::ranges::count(cap, '.') <= 1;
    return cap.empty() || (isNumber && platform::leadingNumber(cap) != 0);
}

}

void AppDelegate::updateDesign()
{
    constexpr platform::Color white { 255, 255, 255 };
    for (auto* const toggle : { &outlets_.usageCapToggle, &outlets_.lastUpdateToggle, &outlets_.remainingUsageToggle,
             &outlets_.nextUpdateToggle, &outlets_.onlyKeyNicknamesToggle, &outlets_.showNotificationsToggle,
             &outlets_.startAtLoginToggle })
        toggle->titleColor.set(white);
}

void AppDelegate::followControls()
{
    observations_.push_back(outlets_.usageLimit.text.observe([this](std::string const&) { showCapReading(); }));
    observations_.push_back(outlets_.usageID.text.observeChanges([this](std::string const&) { showKeyStatus(); }));
    observations_.push_back(outlets_.tarvoUsageKeysComboBox.text.observe(
        [this](std::string const& entry) { outlets_.removeKeyButton.enabled.set(!entry.empty()); }));
    // Other programs can change it, too.
    observations_.push_back(outlets_.window.observeFrontRequests([this] { showStartAtLogin(); }));
}

void AppDelegate::doUpdateUsageCapText()
{
    auto const entry = getCurrentlySelectedKey();
    auto const cap = entry ? usageCapForKey(*entry) : std::nullopt;
    outlets_.usageLimit.text.set(cap.value_or(std::string()));
}

void AppDelegate::showCapReading()
{
    auto const& typed = outlets_.usageLimit.text.get();
    if (readsAsItLooks(typed)) {
        outlets_.usageLimitReading.text.set({});
        return;
    }
    double const cap = platform::leadingNumber(typed);
    outlets_.usageLimitReading.text.set(cap == 0
            ? text("USAGE_CAP_READING_NONE")
            : platform_.bundle.localizedString("USAGE_CAP_READING", formattedUsageStringWithUsageValue(cap, "GB")));
}

void AppDelegate::clearCache() { cacheData().clearCache(); }

void AppDelegate::clearCacheButton()
{
    clearCache();
    if (animationRanAlready_) {
        animateSuccessMessageWithAnimationTime(messageFade, true);
        return;
    }
    animateSuccessMessageWithAnimationTime(platform::Seconds::zero(), false);
    animationRanAlready_ = true;
}

void AppDelegate::animateSuccessMessageWithAnimationTime(platform::Seconds duration, bool andAnimatingIn)
{
    auto& message = outlets_.cacheClearedText;
    if (duration == platform::Seconds::zero()) {
        // The message starts out transparent, whatever the layout set.
        fadeMessage(0.0, duration, [this] {
            outlets_.cacheClearedText.hidden.set(false);
            fadeMessage(1.0, messageFade, [this] { hideMessageLater(); });
        });
        return;
    }
    message.opacity.set(andAnimatingIn ? 0.0 : 1.0);
    message.hidden.set(false);
    fadeMessage(andAnimatingIn ? 1.0 : 0.0, duration, [this, andAnimatingIn] {
        if (andAnimatingIn)
            hideMessageLater();
        else
            outlets_.cacheClearedText.hidden.set(true);
    });
}

void AppDelegate::hideCacheClearedText() { animateSuccessMessageWithAnimationTime(messageFade, false); }

void AppDelegate::fadeMessage(double opacity, platform::Seconds duration, platform::Task completion)
{
    platform::animate(
        platform_.runLoop, { &outlets_.cacheClearedText.opacity }, opacity, duration, std::move(completion));
}

void AppDelegate::hideMessageLater()
{
    platform_.runLoop.performAfter(messageStay, [this] { hideCacheClearedText(); });
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

void AppDelegate::showStartAtLogin()
{
    outlets_.startAtLoginToggle.hidden.set(!platform_.loginItem);
    outlets_.startAtLoginToggle.on.set(platform_.loginItem && platform_.loginItem->isEnabled());
}

void AppDelegate::changeStartAtLogin()
{
    bool const isStored = platform_.loginItem->setEnabled(outlets_.startAtLoginToggle.on.get());
    showStartAtLogin();
    if (!isStored)
        outlets_.window.beginSheet({ .messageText = text("START_AT_LOGIN_FAILURE_TITLE"),
            .informativeText = text("START_AT_LOGIN_FAILURE_MESSAGE") });
}
