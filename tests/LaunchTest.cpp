// SPDX-License-Identifier: MIT
#include "tests/support/ControllerTest.h"

using LaunchTest = ControllerTest;

TEST_F(LaunchTest, AFreshInstallationAsksForAKeyOnly)
{
    defaults.remove(settings::lastInstalledVersion);
    cache().saveCacheFile({ { "used:download", "1" } }, "K1");
    loader.replies[lookupAddress] = "<r><key>K1</key></r>";
    launchAndSettle();
    EXPECT_EQ(cache().retrieveCachedFileWithName("K1"), std::nullopt) << "it may be another version's";
    EXPECT_EQ(*defaults.get<std::string>(settings::lastInstalledVersion), bundle.shortVersion());
    EXPECT_TRUE(outlets->showNotificationsToggle.on.get());
    EXPECT_EQ(outlets->versionText.text.get(), "Version " + bundle.shortVersion());
    EXPECT_EQ(outlets->refreshStatus.text.get(), textOf("NO_CONNECTION_YET"));
    EXPECT_FALSE(outlets->removeKeyButton.enabled.get());

    // The key has been looked up; only its name is missing.
    EXPECT_TRUE(outlets->addKeyWindow.visible.get());
    EXPECT_EQ(desktop.calls, Texts { "activate" });
    outlets->keyNewNickname.userTyped("Home");
    outlets->confirmKeyButton.userClicked();
    settle();
    EXPECT_EQ(stored(), platform::Array { home });
    EXPECT_EQ(title(), "10GB");
    EXPECT_EQ(nextLine(), nextUpdate(at(12, 0)));
    EXPECT_TRUE(outlets->removeKeyButton.enabled.get());
}

TEST_F(LaunchTest, ConvertsTheKeyOfEarlierVersions)
{
    defaults.set(settings::fixedCache, 1);
    defaults.set(settings::tarvoId, "K1");
    defaults.set(settings::tarvoKeys, platform::Array { cottage });
    launchAndSettle();
    EXPECT_EQ(stored(), platform::Array { home });
    EXPECT_FALSE(defaults.contains(settings::tarvoId));
    EXPECT_EQ(alertOn(outlets->window), textOf("CONVERSION_COMPLETE"));
    // The first report comes with the user's confirmation.
    outlets->window.userClosed();
    settle();
    EXPECT_EQ(title(), "10GB");
}

TEST_F(LaunchTest, ForeignSettingsOfTheWrongTypeDoNoHarm)
{
    defaults.set(settings::tarvoKeySelected, "Home - K1 - old");
    defaults.set(settings::tarvoKeys, platform::Array { 5, "Home - K1 - old", platform::Dictionary {} });
    for (auto const* const key : { settings::usageCapValues, settings::hourUpdateInterval, settings::showUsageCap })
        defaults.set(key, "none");
    defaults.set(settings::menuBarSelector, 99);
    defaults.set(settings::tarvoId, 1);
    launchAndSettle();
    EXPECT_EQ(title(), "6GB");
    EXPECT_EQ(nextLine(), "Next update: never");
    EXPECT_EQ(outlets->tarvoUsageKeysComboBox.items.get(), (Texts { "Home - K1 - old" }));
    EXPECT_EQ(outlets->usageLimit.text.get(), "");
}
