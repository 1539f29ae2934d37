// SPDX-License-Identifier: MIT
#include "tests/support/ControllerTest.h"

namespace {

class RefreshTest : public ControllerTest {
protected:
    RefreshTest() { storeKeys({ home, cottage }, home); }

    std::optional<platform::Dictionary> saved(char const* key) const { return cache().retrieveCachedFileWithName(key); }
};

}

TEST_F(RefreshTest, OnlyTheTimersSuccessNotifiesAndOnlyWhileSwitchedOn)
{
    launchAndSettle();
    refresh();
    // Not even the timer's, where the cache has the report.
    controller->updateUsageWithCache(true, true);
    settle();
    EXPECT_EQ(requests(), 2U);
    EXPECT_EQ(desktop.notified, Texts {});
    advance(2h);
    EXPECT_EQ(desktop.notified, (Texts { "Usage updated" }));
    failReply("K1");
    advance(2h);
    EXPECT_EQ(desktop.notified.size(), 1U);
    setReply("K1", 10);
    outlets->showNotificationsToggle.userToggled(false);
    advance(3h);
    EXPECT_EQ(desktop.notified.size(), 1U);

    desktop.delegate->didActivateNotification(7);
    EXPECT_EQ(desktop.removed, (std::vector<platform::NotificationId> { 7 }));
    EXPECT_TRUE(outlets->monitorWindow.visible.get());
}

TEST_F(RefreshTest, AReportNeedsOneFigureToBeASuccess)
{
    auto& reply = loader.replies[addressOf("K1")];
    reply = "<usage><used><download>500000000</download></used></usage>";
    launchAndSettle();
    EXPECT_EQ(title(), "0MB");
    EXPECT_EQ(outlets->downloadUsage.text.get(), "500MB");

    auto const before = saved("K1");
    EXPECT_TRUE(before);
    reply = "<usage/>";
    refresh();
    EXPECT_EQ(title(), "No data");
    EXPECT_EQ(saved("K1"), before);
}

TEST_F(RefreshTest, WithoutAnEntryNothingHappensAtAll)
{
    launchAndSettle();
    outlets->tarvoUsageKeysComboBox.text.set({});
    refresh();
    EXPECT_EQ(nextLine(), nextUpdate(at(12, 0)));
    // The timer goes on with its period, refused each time.
    advance(5h);
    EXPECT_EQ(title(), "10GB");
    EXPECT_EQ(requests(), 1U);
}

TEST_F(RefreshTest, OverlappingRefreshesShowTheLastPresentationAndSaveUnderTheirOwnKeys)
{
    launch();
    EXPECT_EQ(nextLine(), "Next update: …");
    runLoop.runQueued();
    // The timer is armed by now, and tells when.
    EXPECT_EQ(nextLine(), nextUpdate(at(12, 0)));
    connection(1).userClicked();
    runLoop.runQueued();
    ASSERT_EQ(queues.tasks.size(), 2U);
    // The second connection's answer is here first, the first one's late.
    queues.run(1);
    runLoop.runQueued();
    EXPECT_EQ(title(), "20GB");
    queues.run(0);
    runLoop.runQueued();
    EXPECT_EQ(title(), "10GB");
    EXPECT_EQ(outlets->monitorWindow.title.get(), "Usage Meter - Cottage");
    EXPECT_EQ(*platform::entry<std::string>(*saved("K1"), "total:download"), "8000000000");
    EXPECT_EQ(*platform::entry<std::string>(*saved("K2"), "total:download"), "16000000000");
}
