// SPDX-License-Identifier: MIT
#include "tests/support/ControllerTest.h"

#include <fstream>

using LaunchTest = ControllerTest;

TEST_F(LaunchTest, AFreshInstallationAsksForAKeyAndStoresOnlyItsVersion)
{
    defaults.remove(settings::lastInstalledVersion);
    cache().saveCacheFile({ { "used:download", "1" } }, "K1");
    loader.replies["https://www.tarvo.example/account/usage/api?request=key"] = "<r><key>K1</key></r>";
    launchAndSettle();
    EXPECT_EQ(cache().retrieveCachedFileWithName("K1"), std::nullopt);
    EXPECT_EQ(*defaults.get<std::string>(settings::lastInstalledVersion), bundle.shortVersion());
    EXPECT_EQ(outlets->statusBarDropdown.indexOfSelectedItem.get(), 2);
    EXPECT_EQ(outlets->updateIntervalPopupButton.indexOfSelectedItem.get(), 2);
    EXPECT_TRUE(outlets->showNotificationsToggle.on.get());
    for (char const* const key : { settings::menuBarSelector, settings::hourUpdateInterval,
             settings::showNotificationsMenu, settings::fixedCache })
        EXPECT_FALSE(defaults.contains(key)) << key;
    EXPECT_TRUE(outlets->window.visible.get());
    EXPECT_EQ(desktop.activations, 1);
    EXPECT_EQ(title(), "…");
    EXPECT_EQ(outlets->versionText.text.get(), "Version " + bundle.shortVersion());

    // The key has been looked up; only its name is missing.
    EXPECT_TRUE(outlets->addKeyWindow.visible.get());
    EXPECT_EQ(outlets->usageID.text.get(), "K1");
    outlets->keyNewNickname.userTyped("Home");
    outlets->confirmKeyButton.userClicked();
    settle();
    EXPECT_FALSE(outlets->addKeyWindow.visible.get());
    EXPECT_EQ(*defaults.get<platform::Array>(settings::tarvoKeys), platform::Array { home });
    EXPECT_EQ(title(), "10GB");
}

TEST_F(LaunchTest, ConvertsTheKeyOfEarlierVersions)
{
    storeKeys({ cottage }, cottage);
    defaults.set(settings::fixedCache, 1);
    defaults.set(settings::tarvoId, "K1");
    launchAndSettle();
    EXPECT_EQ(*defaults.get<platform::Array>(settings::tarvoKeys), platform::Array { home });
    EXPECT_EQ(*defaults.get<std::string>(settings::tarvoKeySelected), home);
    EXPECT_EQ(outlets->tarvoUsageKeysComboBox.items.get(), Texts { home });
    EXPECT_FALSE(defaults.contains(settings::tarvoId));
    EXPECT_TRUE(outlets->window.visible.get());
    EXPECT_EQ(alertOn(outlets->window), bundle.localizedString("CONVERSION_COMPLETE"));
    EXPECT_EQ(title(), "…");

    // The first report comes with the user's confirmation.
    controller->useConnection();
    settle();
    EXPECT_EQ(title(), "10GB");
    EXPECT_FALSE(outlets->window.visible.get());
}

TEST_F(LaunchTest, RepairsTheCacheOnceThereAreKeys)
{
    auto const old = folder.path() / "K1";
    auto const report = "<plist><dict><key>used:upload</key><string>1</string></dict></plist>";
    std::ofstream(old) << report;
    launchAndSettle();
    EXPECT_TRUE(std::filesystem::exists(old));
    launchWith({ home });
    EXPECT_FALSE(std::filesystem::exists(old));
    std::ofstream(old) << report;
    launchAndSettle();
    EXPECT_TRUE(std::filesystem::exists(old));
}

TEST_F(LaunchTest, ForeignSettingsOfTheWrongTypeDoNoHarm)
{
    storeKeys({}, home);
    defaults.set(settings::tarvoKeys, platform::Array { 5, home, platform::Dictionary {} });
    defaults.set(settings::usageCapValues, "none");
    defaults.set(settings::hourUpdateInterval, "2");
    defaults.set(settings::menuBarSelector, 99);
    defaults.set(settings::tarvoId, 1);
    launchAndSettle();
    EXPECT_EQ(title(), "6GB");
    EXPECT_EQ(outlets->statusBarDropdown.indexOfSelectedItem.get(), 0);
    EXPECT_EQ(outlets->updateIntervalPopupButton.indexOfSelectedItem.get(), 0);
    EXPECT_EQ(outlets->tarvoUsageKeysComboBox.items.get(), (Texts { home }));
    EXPECT_EQ(outlets->usageLimit.text.get(), "");
}
