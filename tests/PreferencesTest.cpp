// SPDX-License-Identifier: MIT
#include "tests/support/ControllerTest.h"

struct PreferencesTest : ControllerTest {
    PreferencesTest() { launchWith({ home, cottage }); }
};

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
    auto& message = outlets->cacheClearedText;
    message.opacity.set(1.0);
    // The first press takes a way of its own, and looks the same.
    for (int press = 0; press < 2; ++press) {
        std::filesystem::create_directories(cache().getCacheDirectory() / "folder" / "deep");
        outlets->clearCacheButton.userClicked();
        EXPECT_TRUE(std::filesystem::is_empty(cache().getCacheDirectory()));
        for (auto const& [duration, opacity] : { std::pair(750ms, 0.5), { 5750ms, 1.0 }, { 750ms, 0.5 } }) {
            advance(duration);
            EXPECT_EQ(message.opacity.at(runLoop.uptime()), opacity);
        }
        EXPECT_FALSE(message.hidden.get());
        advance(750ms);
        EXPECT_TRUE(message.hidden.get());
    }
}

TEST_F(PreferencesTest, StartingAtLoginShowsWhatStandsOnDisk)
{
    auto& toggle = outlets->startAtLoginToggle;
    EXPECT_FALSE(toggle.on.get());
    toggle.userToggled(true);
    EXPECT_TRUE(desktop.startsAtLogin);
    desktop.startsAtLogin = false;
    controller->showPreferences();
    EXPECT_FALSE(toggle.on.get()) << "another program has taken it back";
    desktop.isDiskFull = true;
    toggle.userToggled(true);
    EXPECT_FALSE(toggle.on.get());
    EXPECT_EQ(alertOn(outlets->window), "Starting at login could not be changed.");
    platform.loginItem = nullptr;
    launchAndSettle();
    EXPECT_TRUE(outlets->startAtLoginToggle.hidden.get());
}
