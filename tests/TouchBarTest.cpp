// SPDX-License-Identifier: MIT
#include "platform/TouchBar.h"
#include "tests/support/ControllerTest.h"

namespace {

class TouchBarTest : public ControllerTest {
protected:
    TouchBarTest() { platform.touchBarAvailable = true; }

    std::shared_ptr<platform::TouchBar> bar() const { return outlets->window.touchBar.get(); }
    void tap(std::size_t position) const { bar()->items().at(position)->view.userClicked(); }

    /// The connections' buttons from left to right, each with its tag and the mark of the selected one.
    Texts connectionButtons() const
    {
        Texts buttons;
        for (auto const& item : bar()->items()) {
            auto const& button = item->view;
            buttons.push_back(
                (button.highlighted.get() ? "* " : "") + button.title.get() + "/" + std::to_string(button.tag));
        }
        return { buttons.begin() + 2, buttons.end() };
    }
};

}

TEST_F(TouchBarTest, HoldsTheCommandsAndFromTwoConnectionsOnTheirButtonsInTheListsOrder)
{
    Texts identifiers { "net.tarvo.UsageMeter.forceupdate", "net.tarvo.UsageMeter.detailedusagetouch",
        std::string(platform::touchBarItemIdentifierFlexibleSpace),
        std::string(platform::touchBarItemIdentifierOtherItemsProxy) };
    launchWith({ home });
    EXPECT_EQ(bar()->defaultItemIdentifiers, identifiers);
    EXPECT_EQ(outlets->monitorWindow.touchBar.get(), bar());

    storeKeys({ home, cottage, " - K3" }, cottage);
    launchAndSettle();
    identifiers.insert(identifiers.end() - 1, { "0-Home-no", "1-Cottage-yes", "2--no" });
    EXPECT_EQ(bar()->defaultItemIdentifiers, identifiers);
    EXPECT_EQ(connectionButtons(), (Texts { "Home/0", "* Cottage/1", "/2" }));

    // The first ten have one.
    launchWith(Texts(11, home));
    EXPECT_EQ(connectionButtons().size(), 10U);
}

TEST_F(TouchBarTest, ATapDoesWhatItsButtonSaysAndAllWindowsGetTheNewBar)
{
    launchWith({ home, cottage });
    auto const before = bar();
    auto const items = before->items();
    EXPECT_EQ(items[0]->view.title.get(), "Update Now");
    EXPECT_EQ(items[0]->view.bezelColor.get(), (platform::Color { 133, 200, 75 }));
    EXPECT_EQ(items[1]->view.title.get(), "Daily Usage");
    EXPECT_EQ(items[1]->view.bezelColor.get(), (platform::Color { 50, 50, 75 }));
    EXPECT_EQ(items[2]->view.bezelColor.get(), std::nullopt);
    tap(0);
    settle();
    EXPECT_EQ(requests(), 2U);
    // Only the usage window's own button has the day-by-day window take its place.
    controller->showUsageWindow();
    tap(1);
    EXPECT_TRUE(outlets->monitorWindow.visible.get());

    tap(3);
    settle();
    EXPECT_EQ(title(), "20GB");
    EXPECT_NE(bar(), before);
    EXPECT_EQ(connectionButtons(), (Texts { "Home/0", "* Cottage/1" }));
    EXPECT_EQ(outlets->monitorWindow.touchBar.get(), bar());
    EXPECT_EQ(outlets->detailedUsage.window.touchBar.get(), bar());
    controller->doRemoveKeyAndAlert(1000);
    EXPECT_EQ(connectionButtons(), Texts());
    EXPECT_EQ(outlets->monitorWindow.touchBar.get(), bar());
}
