// SPDX-License-Identifier: MIT
#include "storage/UsageCaps.h"
#include "tests/support/ControllerTest.h"

using StatusMenuTest = LaunchedTest;

TEST_F(StatusMenuTest, PickingAConnectionSwitchesToItAlone)
{
    defaults.set(settings::usageCapValues, platform::Dictionary { { cottage, "40" } });
    controller->showPreferences();
    outlets->usageLimit.userTyped("77");
    connection(1).userClicked();
    EXPECT_EQ(title(), "…");
    EXPECT_EQ(linesOf(outlets->dropDownMenu),
        (Texts { "Downloaded: …", "Downloaded free of charge: …", "All traffic: …", "Usage cap: Unlimited",
            "Remaining: Unlimited", "Last update: …", "Next update: …", "", "Connection", "Update Now", "",
            "Usage Window", "Daily Usage", "Preferences…", "", "Quit" }));
    settle();
    EXPECT_EQ(outlets->usageRemainingText.text.get(), "28GB") << "by its own cap";
    EXPECT_EQ(UsageCaps(defaults).usageCapForKey(home), std::nullopt);
    EXPECT_TRUE(outlets->window.visible.get());
    EXPECT_EQ(linesOf(outlets->connectionMenu), (Texts { home, "* Cottage - K2" }));
}

TEST_F(StatusMenuTest, CommandsDoWhatTheySay)
{
    auto const& lines = outlets->dropDownMenu.items();
    lines[4]->userClicked();
    EXPECT_TRUE(outlets->window.visible.get());
    lines[10]->userClicked();
    EXPECT_EQ(requests(), 2U);
    lines[12]->userClicked();
    lines[13]->userClicked();
    EXPECT_TRUE(outlets->monitorWindow.visible.get() && outlets->detailedUsage.window.visible.get());
    // Its own button has the day-by-day window take its place.
    outlets->detailedUsageButton.userClicked();
    EXPECT_FALSE(outlets->monitorWindow.visible.get());
    lines[14]->userClicked();
    outlets->setCapButton.userClicked();
    lines[16]->userClicked();
    desktop.hasBrowser = false;
    outlets->getUsageCodeButton.userClicked();
    EXPECT_EQ(alertOn(outlets->window), textOf("GET_KEY_FAILURE_TITLE"));
    EXPECT_EQ(desktop.calls,
        (Texts { "activate", "activate", "activate", "activate", "terminate",
            "open https://www.tarvo.example/support/usage/api" }));
}
