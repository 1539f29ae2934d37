// SPDX-License-Identifier: MIT
#include "storage/UsageReport.h"
#include "tests/support/ControllerTest.h"

#include <malloc.h>

using Schedule = LaunchedTest;

TEST_F(Schedule, RefreshesAnIntervalAfterTheLastTimeWhateverTheCacheHolds)
{
    advance(90min);
    refresh();
    cache().saveCacheFile({ { "total:download", "1" }, { reportEntry::nextUpdate, runLoop.now() + 50h } }, "K1");
    advance(2h - 1s);
    EXPECT_EQ(requests(), 2U);
    advance(1s);
    EXPECT_EQ(requests(), 3U);
    EXPECT_EQ(lastLine(), lastUpdate(at(13, 30)));
    EXPECT_EQ(nextLine(), nextUpdate(at(15, 30)));
}

TEST_F(Schedule, ACachedReportsDueTimeHoldsWhileItsChoiceDoes)
{
    using platform::Value;
    Value const due(at(10, 45));
    // The second one is written as another program may do it; the last one falls due while it is read.
    for (auto const& [thenDue, thenChoice, choice, timeToRead, next] :
        { std::tuple(Value("none"), Value(0), 2, 0h, std::string("Next update: never")),
            { due, "2", 2, 0h, nextUpdate(at(10, 45)) }, { due, 2, 5, 0h, nextUpdate(at(15, 0)) },
            { due, 2, 2, 1h, nextUpdate(at(13, 0)) } }) {
        cache().saveCacheFile(
            { { reportEntry::nextUpdate, thenDue }, { reportEntry::updateInterval, thenChoice } }, "K1");
        outlets->updateIntervalPopupButton.indexOfSelectedItem.set(choice);
        controller->updateUsageWithCache(true);
        queues.run(0);
        runLoop.sleep(timeToRead);
        EXPECT_EQ(requests(), timeToRead > 0h ? 2U : 1U);
        EXPECT_EQ(nextLine(), next);
    }
}

TEST_F(Schedule, AnotherIntervalBeginsAnewForAllConnections)
{
    cache().saveCacheFile({ { "used:download", "1" } }, "K2");
    outlets->updateIntervalPopupButton.userSelected(3);
    EXPECT_EQ(requests(), 2U);
    EXPECT_EQ(nextLine(), nextUpdate(at(13, 0)));
    EXPECT_EQ(cache().retrieveCachedFileWithName("K2"), std::nullopt);
    outlets->updateIntervalPopupButton.userSelected(0);
    advance(100h);
    controller->updateUsageWithCache(true);
    EXPECT_EQ(requests(), 3U) << "the saved report never gets old";
    EXPECT_EQ(nextLine(), "Next update: never");
    EXPECT_EQ(lastLine(), lastUpdate(runLoop.now())) << "without a next update, the last one is the moment's";
}

TEST_F(Schedule, WakingRefreshesOnlyWhatFellDueInSleep)
{
    runLoop.sleep(115min);
    EXPECT_EQ(requests(), 1U);
    runLoop.sleep(10min);
    // One refresh, the wake's: the timer was re-armed by it and notified nobody.
    EXPECT_EQ(requests(), 2U);
    EXPECT_EQ(desktop.calls, Texts {});
    // An hour asleep does not delay the timer.
    runLoop.sleep(1h);
    advance(1h);
    EXPECT_EQ(requests(), 3U);
}

TEST_F(Schedule, AClockThatIsSetPutsARefreshOffByAnIntervalAtMost)
{
    cache().saveCacheFile({ { "used:download", "1" }, { reportEntry::nextUpdate, at(12, 0) } }, "K2");
    runLoop.setClock(-24h);
    EXPECT_EQ(requests(), 2U);
    EXPECT_EQ(cache().retrieveCachedFileWithName("K2"), std::nullopt) << "it would be fresh for a day";
    runLoop.setClock(-1min);
    EXPECT_EQ(requests(), 2U) << "put right by a little";
    runLoop.setClock(3h);
    EXPECT_EQ(requests(), 3U);
    EXPECT_EQ(nextLine(), nextUpdate(at(14, 59) - 24h));
}

TEST_F(Schedule, DatesAreThoseOfTheTimeZoneTheyAreReadIn)
{
    auto const here = lastLine();
    ::setenv("TZ", "Asia/Tokyo", 1);
    outlets->dropDownMenu.willShow();
    EXPECT_NE(lastLine(), here);
    EXPECT_EQ(nextLine(), nextUpdate(at(12, 0)));
    // A window may stay open.
    controller->showUsageWindow();
    ::unsetenv("TZ");
    advance(15min);
    EXPECT_EQ(outlets->lastUpdateText.text.get(), here);
    controller->updateButton();
    outlets->dropDownMenu.willShow();
    EXPECT_EQ(lastLine(), "Last update: …");
}

TEST_F(Schedule, ADayOfUseLeavesNothingBehind)
{
    auto const bytesAfterADay = [this] {
        for (int hour = 0; hour < 24; ++hour) {
            hour % 5 == 4 ? failReply("K1") : setReply("K1", 10 + hour);
            hour < 8 ? runLoop.sleep(1h) : advance(1h);
            controller->showUsageWindow();
            connection(static_cast<std::size_t>(hour % 2)).userClicked();
            controller->addKeyWithNickname("Guest", "K3");
            outlets->removeKeyButton.userClicked();
            outlets->window.userAnswered(firstButton);
            outlets->detailedUsageButton.userClicked();
            settle();
            outlets->detailedUsage.window.orderOut();
        }
        desktop.calls = {};
        return ::mallinfo2().uordblks;
    };
    bytesAfterADay();
    auto const afterTwo = bytesAfterADay();
    for (int day = 2; day < 7; ++day)
        EXPECT_LE(bytesAfterADay(), afterTwo + 20'000) << day;
    advance(1h);
    EXPECT_EQ(runLoop.timers(), 1U) << "the next refresh";
}

TEST_F(Schedule, RetriesEveryThirtySecondsUntilTheProviderAnswers)
{
    failReply("K1");
    // Two failures hold one retry.
    controller->updateButton();
    refresh();
    for (auto const& [wait, expected] : { std::pair(29s, 3U), { 1s, 4U }, { 30s, 5U } }) {
        advance(wait);
        EXPECT_EQ(requests(), expected);
    }
    // A success in between takes the retry back, also that of another refresh.
    controller->updateButton();
    controller->updateButton();
    runLoop.advance(1min);
    EXPECT_EQ(queues.tasks.size(), 2U) << "nothing is asked a third time meanwhile";
    queues.run(0);
    setReply("K1", 10);
    settle();
    EXPECT_EQ(title(), "10GB");
    advance(1h);
    EXPECT_EQ(requests(), 7U);
}
