// SPDX-License-Identifier: MIT
#include "detail/PageScripts.h"
#include "tests/support/ControllerTest.h"

using platform::LoadError;

struct DetailedUsageTest : LaunchedTest {
    DetailedUsageTest()
    {
        detailed.usageWebView.engine = &engine;
        show();
    }

    platform::WebViewDelegate& events() const { return *detailed.usageWebView.delegate; }

    void show()
    {
        controller->viewDailyUsageDataButton({});
        settle();
    }

    void pick(std::chrono::year_month month)
    {
        detailed.usageMonthPicker.userPicked(std::chrono::sys_days(month / 10) + 12h);
        advance(400ms);
    }

    /// A load from its start to its end; the page has not answered yet.
    void load()
    {
        events().didStartProvisionalLoadForFrame();
        engine.scripts.clear();
        events().didFinishLoadForFrame();
    }

    bool isShown() const
    {
        bool const shown = !detailed.usageWebView.hidden.get();
        EXPECT_EQ(detailed.usageMonthPicker.hidden.get(), !shown);
        EXPECT_EQ(detailed.progressIndicator.hidden.get(), shown);
        EXPECT_EQ(detailed.loadingText.hidden.get(), shown);
        return shown;
    }

    bool ran(std::string const& script) const { return std::ranges::count(engine.scripts, script) == 1; }
    static std::string address(std::string const& query) { return "https://tarvo.example/support/usage?" + query; }

    DetailedUsageLayout& detailed = outlets->detailedUsage;
    ScriptedEngine engine;
};

TEST_F(DetailedUsageTest, EveryShowingLoadsThePresentMonthOfTheUsersCalendar)
{
    load();
    EXPECT_TRUE(ran(pageScripts::todayHighlight()));
    // A quick change is passed over.
    pick(2026y / 2);
    pick(2025y / 3);
    advance(100ms);
    load();
    EXPECT_FALSE(ran(pageScripts::todayHighlight())) << "the same month of another year";
    // The run goes on into another month.
    detailed.window.userClosed();
    advance(24h * 30);
    platform.dateLocale = "th_TH";
    show();
    EXPECT_EQ(engine.urls,
        (Texts { address("year=2026&month=3"), address("year=2025&month=3"), address("year=2569&month=4") }));
    EXPECT_EQ(detailed.usageMonthPicker.maxDate.get(), runLoop.now());
}

TEST_F(DetailedUsageTest, APageIsShownOnceItIsRestyled)
{
    EXPECT_TRUE(detailed.progressIndicator.spinning.get());
    engine.loading = true;
    load();
    EXPECT_EQ(engine.scripts, Texts()) << "another frame is still on its way";
    engine.loading = false;
    load();
    EXPECT_EQ(engine.scripts.front(), pageScripts::restyling());
    EXPECT_FALSE(isShown());
    engine.answer();
    EXPECT_TRUE(isShown());
    show();
    EXPECT_FALSE(isShown());
}

TEST_F(DetailedUsageTest, EveryLoadHasOneBanner)
{
    auto const banner = pageScripts::banner(textOf("DETAILED_USAGE_WARNING"));
    load();
    events().didFinishLoadForFrame();
    EXPECT_TRUE(ran(banner));
    // A load that ends while the next one is prepared leaves that one its own.
    controller->viewDailyUsageDataButton({});
    load();
    settle();
    load();
    EXPECT_TRUE(ran(banner));
}

TEST_F(DetailedUsageTest, LateAnswersOfAnOlderLoadChangeNothing)
{
    // The first time before the page is shown, the second time before its notice is read.
    for (bool const isNoticeLate : { false, true }) {
        load();
        if (isNoticeLate)
            engine.pending.front()(true);
        EXPECT_EQ(isShown(), isNoticeLate);
        events().didStartProvisionalLoadForFrame();
        engine.answer();
        EXPECT_FALSE(isShown());
        EXPECT_EQ(alertOn(detailed.window), "");
    }
}

TEST_F(DetailedUsageTest, HoweverOftenAPageFailsNothingIsSaidTwice)
{
    auto& window = detailed.window;
    for (auto const& leave : std::vector<std::function<void()>> { [&] { window.userAnswered(firstButton + 1); },
             [&] { window.userClosed(); }, [&] { pick(2026y / 2), advance(1s); },
             [&] { window.userAnswered(firstButton); } }) {
        show();
        pick(2026y / 1);
        advance(1s);
        for (int i = 0; i < 3; ++i) {
            load();
            engine.answer();
            EXPECT_EQ(alertOn(window), textOf("USAGE_ERROR_TITLE"));
        }
        events().didFailProvisionalLoadWithError(LoadError::Stopped);
        events().didFailLoadWithError(LoadError::PageLost);
        window.userAnswered(firstButton);
        EXPECT_EQ(std::get<1>(window.attachedSheet.get())->buttons, (Texts { "Try Again", "Cancel" }));
        load();
        engine.answer();
        leave();
        EXPECT_EQ(alertOn(window), "") << "a notice that waits does not hold it up";
    }
    settle();
    EXPECT_EQ(engine.urls.size(), 11U);
    EXPECT_EQ(engine.urls.back(), address("year=2026&month=1"));
}
