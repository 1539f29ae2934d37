// SPDX-License-Identifier: MIT
#include "tests/support/ControllerTest.h"

struct PreferencesTest : ControllerTest {
    PreferencesTest() { launchWith({ home, cottage }); }
};

TEST_F(PreferencesTest, EachCheckBoxOfALineShowsItsOwnAtOnceAndLasts)
{
    auto const pairs = [this] {
        return std::vector { std::pair(&outlets->usageCapToggle, outlets->usageCapMenuItem.get()),
            { &outlets->remainingUsageToggle, outlets->remainingUsageMenuItem.get() },
            { &outlets->lastUpdateToggle, outlets->lastUpdateMenuItem.get() },
            { &outlets->nextUpdateToggle, outlets->nextUpdateMenuItem.get() } };
    };
    for (std::size_t off = 0; off < pairs().size(); ++off) {
        auto const expectOnlyThatHidden = [&] {
            for (std::size_t i = 0; i < pairs().size(); ++i)
                EXPECT_EQ(pairs()[i].second->hidden.get(), i == off) << i << off;
        };
        pairs()[off].first->userToggled(false);
        expectOnlyThatHidden();
        refresh();
        expectOnlyThatHidden();
        launchAndSettle();
        expectOnlyThatHidden();
        pairs()[off].first->userToggled(true);
    }
}

TEST_F(PreferencesTest, ChoicesTakeEffectAtOnceAndLast)
{
    outlets->onlyKeyNicknamesToggle.userToggled(true);
    outlets->showNotificationsToggle.userToggled(false);
    outlets->statusBarDropdown.userSelected(0);
    outlets->updateIntervalPopupButton.userSelected(6);
    settle();
    for (int launches = 0; launches < 2; ++launches) {
        EXPECT_FALSE(outlets->showNotificationsToggle.on.get());
        EXPECT_EQ(connection(1).title.get(), "Cottage");
        EXPECT_EQ(title(), "6GB");
        EXPECT_EQ(nextLine(), nextUpdate(at(16, 0)));
        EXPECT_EQ(requests(), 2U);
        launchAndSettle();
    }
    outlets->window.effectiveAppearance.set(platform::Appearance::Dark);
    EXPECT_EQ(outlets->window.backgroundColor.get(), bundle.namedColor("mainBackground", platform::Appearance::Dark));

    // Nobody is notified without a service, whatever is stored.
    outlets->showNotificationsToggle.userToggled(true);
    platform.notificationCenter = nullptr;
    launchAndSettle();
    EXPECT_TRUE(outlets->showNotificationsToggle.hidden.get());
    advance(6h);
    EXPECT_EQ(title(), "6GB");
}

TEST_F(PreferencesTest, TheTitleChoiceRewritesTheTitleOnlyOverAReport)
{
    controller->updateButton();
    outlets->statusBarDropdown.userSelected(0);
    EXPECT_EQ(title(), "…");
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

TEST_F(PreferencesTest, ACapThatIsNoPlainNumberSaysWhatItCountsAs)
{
    std::vector<std::pair<char const*, char const*>> const cases { { "", "" }, { "250", "" }, { "2.5", "" },
        { "1,000", "counts as 1GB" }, { "62,5", "counts as 62GB" }, { "1e3", "counts as 1,000GB" },
        { "abc", "counts as no cap" }, { "0", "counts as no cap" }, { "1.2.3", "counts as 1.2GB" } };
    for (auto const& [typed, reading] : cases) {
        outlets->usageLimit.userTyped(typed);
        EXPECT_EQ(outlets->usageLimitReading.text.get(), reading) << typed;
    }
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
    // Of two presses each one's time to go comes, and begins with the message shown.
    outlets->clearCacheButton.userClicked();
    advance(3s);
    outlets->clearCacheButton.userClicked();
    advance(6500ms);
    EXPECT_FALSE(message.hidden.get());
    EXPECT_EQ(message.opacity.at(runLoop.uptime()), 1.0);
    advance(1500ms);
    EXPECT_TRUE(message.hidden.get());
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
    EXPECT_EQ(alertOn(outlets->window), "The start-at-login setting could not be changed.");
    platform.loginItem = nullptr;
    launchAndSettle();
    EXPECT_TRUE(outlets->startAtLoginToggle.hidden.get());
}
