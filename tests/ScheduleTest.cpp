// SPDX-License-Identifier: MIT
#include "app/NextTimer.h"
#include "storage/UsageReport.h"
#include "tests/support/ControllerTest.h"

#include <malloc.h>

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
    EXPECT_EQ(nextLine(), "Next update: never");
    advance(10h);
    EXPECT_EQ(requests(), 1U);
}

TEST_F(Schedule, ACachedReportKeepsItsDueTimeButOfAnotherChoiceArmsAFullPeriod)
{
    advance(75min);
    // As another program may have written it.
    auto report = cache().retrieveCachedFileWithName("K1").value();
    report.insert_or_assign(reportEntry::updateInterval, "2");
    cache().saveCacheFile(report, "K1");
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
    EXPECT_EQ(nextLine(), "Next update: never");
    auto const saved = *cache().retrieveCachedFileWithName("K1");
    EXPECT_FALSE(saved.contains(reportEntry::nextUpdate));
    EXPECT_EQ(*platform::entry<std::int64_t>(saved, reportEntry::updateInterval), 0);
    advance(100h);
    controller->updateUsageWithCache(true);
    settle();
    EXPECT_EQ(requests(), 3U);
    EXPECT_EQ(lastLine(), lastUpdate(runLoop.now())) << "without a next update, the last one is the moment's";
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

TEST_F(Schedule, AClockThatIsSetPutsARefreshOffByAnIntervalAtMost)
{
    auto const setClock = [this](platform::Seconds forward) {
        runLoop.setClock(forward);
        settle();
    };
    cache().saveCacheFile({ { "used:download", "1" }, { reportEntry::nextUpdate, at(12, 0) } }, "K2");
    setClock(-24h);
    EXPECT_EQ(requests(), 2U);
    EXPECT_EQ(nextLine(), nextUpdate(at(12, 0) - 24h));
    EXPECT_EQ(cache().retrieveCachedFileWithName("K2"), std::nullopt) << "it would be fresh for a day";
    advance(30min);
    setClock(-30min);
    EXPECT_EQ(requests(), 2U);
    setClock(3h);
    EXPECT_EQ(requests(), 3U);
    EXPECT_EQ(nextLine(), nextUpdate(at(15, 0) - 24h));
}

TEST_F(Schedule, AMenuThatIsOpenedHasItsDatesInTheTimeZoneOfTheMoment)
{
    auto const here = dates.string(at(10, 0));
    ::setenv("TZ", "Asia/Tokyo", 1);
    outlets->dropDownMenu.willShow();
    EXPECT_EQ(lastLine(), "Last update: " + dates.string(at(10, 0)));
    EXPECT_EQ(nextLine(), "Next update: " + dates.string(at(12, 0)));
    EXPECT_NE(dates.string(at(10, 0)), here);
    ::unsetenv("TZ");
    controller->updateButton();
    outlets->dropDownMenu.willShow();
    EXPECT_EQ(lastLine(), "Last update: …");
}

TEST_F(Schedule, AWindowThatStaysOpenHasItsDatesOfTheDayAndTimeZone)
{
    outlets->updateIntervalPopupButton.userSelected(0);
    settle();
    controller->showUsageWindow();
    ::setenv("TZ", "Asia/Tokyo", 1);
    advance(15min);
    EXPECT_EQ(outlets->lastUpdateText.text.get(), "Last update: " + dates.string(at(10, 0)));
    ::unsetenv("TZ");
    outlets->monitorWindow.orderOut();
    EXPECT_EQ(runLoop.timers(), 0U) << "nobody sees them any more";
}

TEST_F(Schedule, AWeekOfUseLeavesNothingBehind)
{
    outlets->updateIntervalPopupButton.userSelected(1);
    auto const useForADay = [this] {
        for (int hour = 0; hour < 24; ++hour) {
            hour % 5 == 4 ? failReply("K1") : setReply("K1", 10 + hour);
            hour < 8 ? sleep(1h) : advance(1h);
            outlets->dropDownMenu.willShow();
            connection(static_cast<std::size_t>(hour % 2)).userClicked();
            controller->addKeyWithNickname("Guest", "K3");
            controller->updateButton();
            outlets->removeKeyButton.userClicked();
            outlets->window.userAnswered(1000);
            controller->viewDailyUsageDataButton({});
            settle();
            outlets->detailedUsage.window.orderOut();
        }
        EXPECT_GE(requests(), 24U);
        loader.requests = {};
        desktop.notified = {};
        return ::mallinfo2().uordblks;
    };
    useForADay();
    auto const afterADay = useForADay();
    for (int day = 2; day < 7; ++day)
        EXPECT_LT(useForADay(), afterADay + 20'000) << "bytes in use";
    setReply("K1", 10);
    refresh();
    advance(1min);
    EXPECT_EQ(runLoop.timers(), 1U) << "the next refresh";
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

    // That of another refresh too, which was asked for before the failure.
    controller->updateButton();
    controller->updateButton();
    failReply("K1");
    queues.run(0);
    setReply("K1", 10);
    settle();
    EXPECT_EQ(title(), "10GB");
    advance(1h);
    EXPECT_EQ(requests(), 8U);
}
