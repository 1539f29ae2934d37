// SPDX-License-Identifier: MIT
#include "tests/support/ControllerTest.h"

using PreferencesTest = LaunchedTest;

TEST_F(PreferencesTest, ChoicesTakeEffectAtOnceThatLasts)
{
    outlets->onlyKeyNicknamesToggle.userToggled(true);
    outlets->showNotificationsToggle.userToggled(false);
    outlets->usageCapToggle.userToggled(false);
    outlets->lastUpdateToggle.userToggled(false);
    outlets->statusBarDropdown.userSelected(0);
    outlets->updateIntervalPopupButton.userSelected(6);
    for (int launches = 0; launches < 2; ++launches, advance(1h), launch()) {
        EXPECT_EQ(requests(), 2U);
        EXPECT_FALSE(outlets->showNotificationsToggle.on.get());
        EXPECT_EQ(connection(1).title.get(), "Cottage");
        EXPECT_TRUE(outlets->usageCapMenuItem->hidden.get() && outlets->lastUpdateMenuItem->hidden.get());
        EXPECT_EQ(linesOf(outlets->dropDownMenu).size(), 14U);
        EXPECT_EQ(title(), "6GB");
        EXPECT_EQ(nextLine(), nextUpdate(at(16, 0)));
    }
    outlets->window.effectiveAppearance.set(platform::Appearance::Dark);
    EXPECT_EQ(outlets->window.backgroundColor.get(), bundle.namedColor("mainBackground", platform::Appearance::Dark));
}

TEST_F(PreferencesTest, ADesktopWithoutAServiceOffersNoChoiceOfIt)
{
    platform.notificationCenter = nullptr;
    platform.loginItem = nullptr;
    launchAndSettle();
    EXPECT_TRUE(outlets->showNotificationsToggle.hidden.get() && outlets->startAtLoginToggle.hidden.get());
    EXPECT_EQ(requestsAfter(2h), 2U) << "with nobody to notify";
}

TEST_F(PreferencesTest, TheTitleChoiceRewritesTheTitleOnlyOverAReport)
{
    auto const titleAfter = [this](int choice) {
        outlets->statusBarDropdown.userSelected(choice);
        return title();
    };
    controller->updateButton();
    EXPECT_EQ(titleAfter(3), "…");
    settle();
    for (auto const& [choice, shown] :
        { std::pair(3, "Unlimited"), { 0, "6GB" }, { 1, "4GB" }, { 2, "10GB" }, { 4, "Error" }, { -1, "Error" } })
        EXPECT_EQ(titleAfter(choice), shown);
    failReply("K1");
    refresh();
    EXPECT_EQ(titleAfter(2), "No data");
}

TEST_F(PreferencesTest, ACapThatIsNoPlainNumberSaysWhatItCountsAs)
{
    for (auto const& [typed, reading] : { std::pair("", ""), { "250", "" }, { "2.5", "" }, { "1,000", "counts as 1GB" },
             { "62,5", "counts as 62GB" }, { "1e3", "counts as 1,000GB" }, { "abc", "counts as no cap" },
             { "0", "counts as no cap" }, { "1.2.3", "counts as 1.2GB" } }) {
        outlets->usageLimit.userTyped(typed);
        EXPECT_EQ(outlets->usageLimitReading.text.get(), reading) << typed;
    }
}

TEST_F(PreferencesTest, TheSuccessMessageShowsForAWhileAfterEveryPress)
{
    auto& message = outlets->cacheClearedText;
    message.opacity.set(1.0);
    // The first press takes a different code path, but looks the same.
    for (int press = 0; press < 2; ++press) {
        std::filesystem::create_directories(cache().getCacheDirectory() / "folder" / "deep");
        outlets->clearCacheButton.userClicked();
        EXPECT_TRUE(std::filesystem::is_empty(cache().getCacheDirectory()));
        for (auto const& [wait, opacity] : { std::pair(750ms, 0.5), { 5750ms, 1.0 }, { 750ms, 0.5 }, { 750ms, 0.0 } }) {
            advance(wait);
            EXPECT_EQ(message.opacity.at(runLoop.uptime()), opacity);
            EXPECT_EQ(message.hidden.get(), opacity == 0.0);
        }
    }
}

TEST_F(PreferencesTest, StartingAtLoginShowsWhatStandsOnDisk)
{
    auto& toggle = outlets->startAtLoginToggle;
    toggle.userToggled(true);
    EXPECT_TRUE(std::exchange(desktop.startsAtLogin, false));
    controller->showPreferences();
    EXPECT_FALSE(toggle.on.get()) << "another program has taken it back";
    desktop.isDiskFull = true;
    toggle.userToggled(true);
    EXPECT_FALSE(toggle.on.get());
    EXPECT_EQ(alertOn(outlets->window), "The start-at-login setting could not be changed.");
}
