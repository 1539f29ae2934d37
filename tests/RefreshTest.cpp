// SPDX-License-Identifier: MIT
#include "services/UsageData.h"
#include "storage/UsageReport.h"
#include "tests/support/ControllerTest.h"

#include <random>

using RefreshTest = LaunchedTest;

TEST_F(RefreshTest, RefreshesAnIntervalAfterTheLastTimeWhateverTheCacheHolds)
{
    advance(90min);
    refresh();
    cache().saveCacheFile({ { "total:download", "1" }, { reportEntry::nextUpdate, runLoop.now() + 50h } }, "K1");
    EXPECT_EQ(requestsAfter(2h - 1s), 2U);
    EXPECT_EQ(requestsAfter(1s), 3U);
    EXPECT_EQ(lastLine(), lastUpdate(at(13, 30)));
    EXPECT_EQ(nextLine(), nextUpdate(at(15, 30)));
}

TEST_F(RefreshTest, ACachedReportsDueTimeHoldsWhileItsChoiceDoes)
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

TEST_F(RefreshTest, AnotherIntervalBeginsAnewForAllConnections)
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

TEST_F(RefreshTest, WakingRefreshesOnlyWhatFellDueInSleep)
{
    runLoop.sleep(115min);
    EXPECT_EQ(requests(), 1U);
    runLoop.sleep(10min);
    // One refresh, the wake's: the timer was re-armed by it and notified nobody.
    EXPECT_EQ(requests(), 2U);
    EXPECT_EQ(desktop.calls, Texts {});
    // An hour asleep does not delay the timer.
    runLoop.sleep(1h);
    EXPECT_EQ(requestsAfter(1h), 3U);
}

TEST_F(RefreshTest, AClockThatIsSetPutsARefreshOffByAnIntervalAtMost)
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

TEST_F(RefreshTest, DatesAreThoseOfTheTimeZoneTheyAreReadIn)
{
    auto const here = lastLine();
    ::setenv("TZ", "Asia/Tokyo", 1);
    outlets->dropDownMenu.willShow();
    EXPECT_NE(lastLine(), here);
    // A window may stay open.
    controller->showUsageWindow();
    ::unsetenv("TZ");
    advance(15min);
    EXPECT_EQ(outlets->lastUpdateText.text.get(), here);
}

TEST_F(RefreshTest, RetriesEveryThirtySecondsUntilTheProviderAnswers)
{
    failReply("K1");
    // Two failures hold one retry.
    controller->updateButton();
    refresh();
    for (auto const& [wait, expected] : { std::pair(29s, 3U), { 1s, 4U }, { 30s, 5U } })
        EXPECT_EQ(requestsAfter(wait), expected);
    // A success takes the retry back, also that of another refresh.
    controller->updateButton();
    controller->updateButton();
    runLoop.advance(1min);
    EXPECT_EQ(queues.tasks.size(), 2U) << "nothing is asked a third time meanwhile";
    queues.run(0);
    setReply("K1", 10);
    settle();
    EXPECT_EQ(requestsAfter(1h), 7U);
}

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

TEST_F(RefreshTest, WithoutRoomForAnotherQueueEverythingSaysThatItFails)
{
    queues.isFull = true;
    refresh();
    EXPECT_EQ(title(), "No data");
    controller->showPreferences();
    outlets->autoRetrieveCodeButton.userClicked();
    EXPECT_EQ(alertOn(outlets->window), textOf("AUTO_FAILURE_TITLE"));
    controller->viewDailyUsageDataButton({});
    EXPECT_EQ(alertOn(outlets->detailedUsage.window), textOf("USAGE_DETAIL_ERROR_LOAD_TITLE"));
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

TEST_F(RefreshTest, AReportHasTheFiguresAsTheyStandByTheGroupOpenedLast)
{
    std::string const report = "<a><used><upload>2</upload></used></a>", megabytes(2'000'000, ' ');
    std::vector<std::pair<std::string, std::optional<platform::Dictionary>>> const cases {
        { "<a><used><x><download>1</download></x></used></a>", { { { "used:download", "1" } } } },
        { "\n <a><total><download>\n\t52345678901\n</download><upload>\u20031.5E9\u00A0</upload></total></a>\u3000\n",
            { { { "total:download", "52345678901" }, { "total:upload", "1.5E9" } } } },
        { "<a><grace><download>n/a</download><upload/></grace></a>",
            { { { "grace:download", "n/a" }, { "grace:upload", "" } } } },
        { "<a><plan>9</plan><used/><upload>2</upload></a>", { { { "used:upload", "2" } } } },
        { "<a><download>1</download><used><upload>1</upload></used><used><upload>2</upload></used></a>",
            { { { "used:upload", "2" } } } },
        { "<a><Used/><download>1</download><used><DOWNLOAD>2</DOWNLOAD></used></a>", platform::Dictionary {} },
        { "<a xmlns:n='u'><n:used><download>1</download></n:used></a>", platform::Dictionary {} },
        { "<a><used>3<download>1<![CDATA[9]]>&#50;</download></used></a>", { { { "used:download", "312" } } } },
        { megabytes + report + megabytes, { { { "used:upload", "2" } } } },
        { "<b>" + megabytes + report + "</b>", std::nullopt },
    };
    for (auto const& [body, figures] : cases) {
        loader.replies["https://tarvo.example:8443/account/usage/api?key=a b%ü"] = body;
        EXPECT_EQ(UsageData(loader, ProviderAddresses("tarvo.example:8443")).updateUsage("a b%ü"), figures)
            << body.substr(0, 99);
    }
}
