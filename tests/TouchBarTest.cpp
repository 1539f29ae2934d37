// SPDX-License-Identifier: MIT
#include "platform/TouchBar.h"
#include "tests/support/ControllerTest.h"

using TouchBarTest = ControllerTest;

TEST_F(TouchBarTest, HasAButtonForEachOfTheFirstTenConnectionsOfSeveral)
{
    platform.touchBarAvailable = true;
    auto const items = [this] { return outlets->monitorWindow.touchBar.get()->items(); };
    for (auto const& [connections, buttons] : { std::pair(1U, 2U), { 11U, 12U } }) {
        Texts entries(connections, cottage);
        entries.front() = home;
        launchWith(entries);
        EXPECT_EQ(items().size(), buttons);
    }
    for (std::size_t const position : { 0, 1, 3 })
        items()[position]->view.userClicked();
    EXPECT_EQ(requests(), 3U);
    EXPECT_TRUE(outlets->detailedUsage.window.visible.get());
    EXPECT_TRUE(items()[3]->view.highlighted.get());
}
