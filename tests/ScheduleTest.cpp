// SPDX-License-Identifier: MIT
#include "app/NextTimer.h"
#include "storage/UsageReport.h"
#include "tests/support/ControllerTest.h"

namespace {

class Schedule : public ControllerTest {
protected:
    Schedule() { launchWith({ home, cottage }); }

    void sleep(platform::Seconds duration)
    {
        runLoop.sleep(duration);
        settle();
    }
};

}

TEST(NextTimer, PlansByTheDueTimeUnlessTheChoiceChanged)
{
    using Plan = std::optional<TimerPlan>;
    platform::Date const now { 1000h };
    EXPECT_EQ(nextTimer(now, now + 45min, 0s, 2, 2), Plan({ now + 45min, 45min }));
    EXPECT_EQ(nextTimer(now, now + 45min, 0s, 3, 2), Plan({ now + 3h, 3h }));
    // Over already: it fires at once, and has a period all the same.
    EXPECT_EQ(nextTimer(now, now - 1h, 0s, 2, 2), Plan({ now - 1h, 2h }));
    // The choice became "never" while the report was being read.
    EXPECT_EQ(nextTimer(now, now + 45min, 0s, 0, 2), Plan());
}

TEST_F(Schedule, RefreshesEveryIntervalWhateverTheCacheHoldsAndUpdateNowMovesTheTimer)
{
    EXPECT_EQ(nextLine(), nextUpdate(at(12, 0)));
    advance(90min);
    EXPECT_EQ(requests(), 1U);
    refresh();
    EXPECT_EQ(nextLine(), nextUpdate(at(13, 30)));
    cache().saveCacheFile({ { "total:download", "1" }, { reportEntry::nextUpdate, runLoop.now() + 50h } }, "K1");
    advance(2h - 1s);
    EXPECT_EQ(requests(), 2U);
    advance(1s);
    EXPECT_EQ(requests(), 3U);
    EXPECT_EQ(nextLine(), nextUpdate(at(15, 30)));
    EXPECT_EQ(lastLine(), lastUpdate(at(13, 30)));
}

TEST_F(Schedule, ACachedReportWithoutADueTimeArmsNoTimer)
{
    cache().saveCacheFile({ { "total:download", "1" }, { reportEntry::updateInterval, 0 } }, "K1");
    launchAndSettle();
    EXPECT_EQ(nextLine(), "Next update: none");
    advance(10h);
    EXPECT_EQ(requests(), 1U);
}

TEST_F(Schedule, ACachedReportKeepsItsDueTimeButOfAnotherChoiceArmsAFullPeriod)
{
    advance(75min);
    controller->updateUsageWithCache(true);
    settle();
    EXPECT_EQ(requests(), 1U);
    EXPECT_EQ(nextLine(), nextUpdate(at(12, 0)));
    EXPECT_EQ(lastLine(), lastUpdate(at(10, 0)));
    advance(45min);
    EXPECT_EQ(requests(), 2U);

    outlets->updateIntervalPopupButton.indexOfSelectedItem.set(5);
    advance(30min);
    controller->updateUsageWithCache(true);
    settle();
    EXPECT_EQ(requests(), 2U);
    EXPECT_EQ(nextLine(), nextUpdate(at(17, 30)));
}

TEST_F(Schedule, ChangingTheIntervalEmptiesTheCacheAndRefreshes)
{
    cache().saveCacheFile({ { "used:download", "1" } }, "K2");
    outlets->updateIntervalPopupButton.userSelected(2);
    settle();
    EXPECT_EQ(requests(), 2U);
    EXPECT_EQ(cache().retrieveCachedFileWithName("K2"), std::nullopt);

    outlets->updateIntervalPopupButton.userSelected(0);
    settle();
    EXPECT_EQ(nextLine(), "Next update: none");
    auto const saved = *cache().retrieveCachedFileWithName("K1");
    EXPECT_FALSE(saved.contains(reportEntry::nextUpdate));
    EXPECT_EQ(*platform::entry<std::int64_t>(saved, reportEntry::updateInterval), 0);
    advance(100h);
    EXPECT_EQ(requests(), 3U);
}

TEST_F(Schedule, WakingRefreshesOnlyWhatFellDueInSleep)
{
    sleep(115min);
    EXPECT_EQ(requests(), 1U);
    sleep(10min);
    // One refresh, the wake's: the timer was re-armed by it and notified nobody.
    EXPECT_EQ(requests(), 2U);
    EXPECT_TRUE(desktop.notified.empty());
    EXPECT_EQ(nextLine(), nextUpdate(at(14, 5)));
    // An hour asleep does not delay the timer.
    sleep(1h);
    advance(1h);
    EXPECT_EQ(requests(), 3U);

    outlets->updateIntervalPopupButton.userSelected(0);
    sleep(48h);
    EXPECT_EQ(requests(), 4U);
}

TEST_F(Schedule, RetriesEveryThirtySecondsUntilTheProviderAnswers)
{
    failReply("K1");
    // Two failures hold one retry.
    controller->updateButton();
    refresh();
    advance(29s);
    EXPECT_EQ(requests(), 3U);
    advance(1s);
    EXPECT_EQ(requests(), 4U);
    advance(30s);
    EXPECT_EQ(requests(), 5U);
    // A success in between takes the retry back.
    setReply("K1", 10);
    advance(10s);
    refresh();
    EXPECT_EQ(title(), "10GB");
    advance(1h);
    EXPECT_EQ(requests(), 6U);
}
