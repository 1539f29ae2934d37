// SPDX-License-Identifier: MIT
#include "tests/support/ControllerTest.h"

namespace {

class StatusMenuTest : public ControllerTest {
protected:
    StatusMenuTest() { launchWith({ home, cottage }); }

    void click(std::string const& title) const
    {
        for (auto const& item : outlets->dropDownMenu.items()) {
            if (item->title.get() == title)
                return item->userClicked();
        }
        FAIL() << title;
    }
};

}

TEST_F(StatusMenuTest, PickingAConnectionSwitchesToItAndLeavesCapsAndWindowAlone)
{
    defaults.set(settings::usageCapValues, platform::Dictionary { { cottage, "40" } });
    outlets->window.makeKeyAndOrderFront();
    outlets->usageLimit.userTyped("77");
    connection(1).userClicked();
    EXPECT_EQ(title(), "…");
    auto lines = linesOf(outlets->dropDownMenu);
    std::erase_if(lines, [](std::string const& line) { return !line.ends_with(" …"); });
    EXPECT_EQ(lines,
        (Texts {
            "Downloaded: …", "Downloaded free of charge: …", "All traffic: …", "Last update: …", "Next update: …" }));
    settle();
    EXPECT_EQ(title(), "20GB");
    EXPECT_EQ(outlets->usageCapText.text.get(), "40GB");
    EXPECT_EQ(controller->usageCapForKey(home), std::nullopt);
    EXPECT_TRUE(outlets->window.visible.get());
}

TEST_F(StatusMenuTest, ConfirmingStoresTheCapAndHidesTheWindowEvenAfterAnEmptyPickThatWasRefused)
{
    storeKeys({ "", cottage }, cottage);
    launchAndSettle();
    outlets->usageLimit.userTyped("40");
    connection(0).userClicked();
    EXPECT_TRUE(outlets->window.visible.get());
    EXPECT_EQ(alertOn(outlets->window), bundle.localizedString("FAILURE_BLANK_CODE"));

    outlets->tarvoUsageKeysComboBox.userSelected(1);
    EXPECT_EQ(outlets->usageLimit.text.get(), "");
    defaults.set(settings::usageCapValues, platform::Dictionary { { home, "90" } });
    for (auto const& [typed, shown] : { std::pair("12,5", "12GB"), { "", "∞" }, { "40", "40GB" } }) {
        outlets->usageLimit.userTyped(typed);
        outlets->useConnectionButton.userClicked();
        settle();
        EXPECT_EQ(controller->usageCapForKey(cottage), typed);
        EXPECT_EQ(outlets->usageCapText.text.get(), shown);
    }
    EXPECT_EQ(controller->usageCapForKey(home), "90");
    EXPECT_FALSE(outlets->window.visible.get());
    EXPECT_EQ(title(), "20GB");
}

TEST_F(StatusMenuTest, CommandsDoWhatTheySay)
{
    click("Update Now");
    settle();
    EXPECT_EQ(requests(), 2U);
    EXPECT_EQ(outlets->window.touchBar.get(), nullptr) << "most desktops have no touch bar";
    click("Usage cap: Unlimited");
    EXPECT_TRUE(outlets->window.visible.get());
    click("Usage Window");
    EXPECT_EQ(desktop.activations, 0);
    click("Daily Usage");
    EXPECT_TRUE(outlets->detailedUsage.window.visible.get());
    EXPECT_TRUE(outlets->monitorWindow.visible.get());
    // Its own button has the day-by-day window take its place.
    outlets->detailedUsageButton.userClicked();
    EXPECT_FALSE(outlets->monitorWindow.visible.get());
    EXPECT_EQ(desktop.activations, 2);
    click("Preferences…");
    EXPECT_EQ(desktop.activations, 3);
    click("Quit");
    EXPECT_EQ(desktop.terminations, 1);
    outlets->getUsageCodeButton.userClicked();
    EXPECT_EQ(desktop.opened, (Texts { "https://www.tarvo.example/support/usage/api" }));
}
