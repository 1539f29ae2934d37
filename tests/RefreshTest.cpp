// SPDX-License-Identifier: MIT
#include "tests/support/ControllerTest.h"

#include <random>

using RefreshTest = LaunchedTest;

TEST_F(RefreshTest, OnlyTheTimersSuccessNotifiesWhileThatIsSwitchedOn)
{
    refresh();
    // Not even the timer's, where the cache has the report.
    controller->updateUsageWithCache(true, true);
    EXPECT_EQ(requests(), 2U);
    EXPECT_EQ(desktop.calls, Texts {});
    advance(2h);
    EXPECT_EQ(desktop.calls, Texts { "notify Usage updated" });
    failReply("K1");
    advance(2h);
    setReply("K1", 10);
    advance(30s);
    EXPECT_EQ(title(), "10GB");
    outlets->showNotificationsToggle.userToggled(false);
    advance(3h);
    desktop.delegate->didActivateNotification(7);
    EXPECT_EQ(desktop.calls, (Texts { "notify Usage updated", "remove 7" })) << "a retry is no timer's refresh";
    EXPECT_TRUE(outlets->monitorWindow.visible.get());
}

TEST_F(RefreshTest, WithoutRoomForAnotherQueueEverythingFailsUntilThereIs)
{
    queues.isFull = true;
    refresh();
    EXPECT_EQ(title(), "No data");
    controller->showPreferences();
    outlets->autoRetrieveCodeButton.userClicked();
    EXPECT_EQ(alertOn(outlets->window), textOf("AUTO_FAILURE_TITLE"));
    controller->viewDailyUsageDataButton({});
    EXPECT_EQ(alertOn(outlets->detailedUsage.window), textOf("USAGE_DETAIL_ERROR_LOAD_TITLE"));
    queues.isFull = false;
    advance(30s);
    EXPECT_EQ(title(), "10GB");
}

TEST_F(RefreshTest, HoweverRefreshesOverlapTheSelectedConnectionEndsOnTheScreen)
{
    std::minstd_rand random(2026); // NOLINT(*-msc51-cpp): the same in every run
    for (int round = 0; round < 100; ++round) {
        for (int i = 0; i < 4; ++i)
            random() % 2 == 0 ? controller->updateButton() : connection(random() % 2).userClicked();
        while (!queues.tasks.empty()) {
            random() % 3 == 0 ? failReply("K1") : setReply("K1", 10);
            queues.run(random() % queues.tasks.size());
            if (random() % 2 == 0)
                runLoop.runQueued();
        }
        setReply("K1", 10);
        advance(30s);
        bool const isHome = connection(0).on.get();
        EXPECT_EQ(title(), isHome ? "10GB" : "20GB") << round;
        EXPECT_EQ(outlets->monitorWindow.title.get(), isHome ? "Usage Meter - Home" : "Usage Meter - Cottage");
        EXPECT_EQ(runLoop.timers(), 1U) << "the next refresh";
    }
}
