// SPDX-License-Identifier: MIT
#include "tests/support/ControllerTest.h"

namespace {

class PreferencesTest : public ControllerTest {
protected:
    PreferencesTest() { launchWith({ home, cottage }); }

    /// Nothing while the message is hidden.
    std::optional<double> messageOpacityAfter(platform::Seconds duration)
    {
        advance(duration);
        auto const& message = outlets->cacheClearedText;
        return message.hidden.get() ? std::nullopt : std::optional(message.opacity.at(runLoop.uptime()));
    }
};

}

TEST_F(PreferencesTest, ChoicesTakeEffectAtOnceAndLast)
{
    outlets->usageCapToggle.userToggled(false);
    outlets->nextUpdateToggle.userToggled(false);
    outlets->onlyKeyNicknamesToggle.userToggled(true);
    outlets->showNotificationsToggle.userToggled(true);
    outlets->statusBarDropdown.userSelected(0);
    outlets->updateIntervalPopupButton.userSelected(6);
    settle();
    // Nobody is notified without a service, whatever is stored.
    platform.notificationCenter = nullptr;
    for (int launches = 0; launches < 2; ++launches) {
        EXPECT_TRUE(outlets->usageCapMenuItem->hidden.get());
        EXPECT_FALSE(outlets->remainingUsageMenuItem->hidden.get());
        EXPECT_TRUE(outlets->nextUpdateMenuItem->hidden.get());
        EXPECT_EQ(connection(1).title.get(), "Cottage");
        EXPECT_EQ(title(), "6GB");
        EXPECT_EQ(nextLine(), nextUpdate(at(16, 0)));
        EXPECT_EQ(requests(), 2U);
        launchAndSettle();
    }
    EXPECT_TRUE(outlets->showNotificationsToggle.hidden.get());
    outlets->window.effectiveAppearance.set(platform::Appearance::Dark);
    EXPECT_EQ(outlets->window.backgroundColor.get(), bundle.namedColor("mainBackground", platform::Appearance::Dark));
    EXPECT_FALSE(outlets->window.visible.get());
    advance(6h);
    EXPECT_EQ(requests(), 3U);
}

TEST_F(PreferencesTest, TheTitleChoiceRewritesTheTitleOnlyOverAReport)
{
    controller->updateButton();
    outlets->statusBarDropdown.userSelected(0);
    EXPECT_EQ(title(), "Please wait…");
    settle();
    EXPECT_EQ(title(), "6GB");
    Texts titles;
    for (int const index : { 1, 2, 3, 4, -1 }) {
        outlets->statusBarDropdown.indexOfSelectedItem.set(index);
        controller->changeStatusBarDropdown();
        titles.push_back(title());
    }
    EXPECT_EQ(titles, (Texts { "4GB", "10GB", "Unlimited", "Error", "Error" }));

    failReply("K1");
    refresh();
    outlets->statusBarDropdown.userSelected(2);
    EXPECT_EQ(title(), "No data");
}

TEST_F(PreferencesTest, TheSuccessMessageFadesInStaysAndGoesAfterEveryPress)
{
    outlets->cacheClearedText.opacity.set(1.0);
    // The first press takes a way of its own, and looks the same.
    for (int press = 0; press < 2; ++press) {
        cache().saveCacheFile({}, "K2");
        outlets->clearCacheButton.userClicked();
        EXPECT_TRUE(std::filesystem::is_empty(cache().getCacheDirectory()));
        EXPECT_EQ(messageOpacityAfter(750ms), 0.5);
        EXPECT_EQ(messageOpacityAfter(750ms + 5s), 1.0);
        EXPECT_EQ(messageOpacityAfter(750ms), 0.5);
        EXPECT_EQ(messageOpacityAfter(750ms), std::nullopt);
    }
}
