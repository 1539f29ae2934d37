// SPDX-License-Identifier: MIT
#include "detail/PageScripts.h"
#include "platform/Calendar.h"
#include "services/ProviderAddresses.h"
#include "tests/support/ControllerTest.h"

#include <algorithm>

namespace {

using platform::LoadError;

/// Writes down what it is to load and to run; a test plays the page.
struct ScriptedEngine final : platform::WebEngine {
    void load(std::string const& url) override { urls.push_back(url); }
    bool isLoading() const override { return loading; }
    void run(std::string const& script) override { scripts.push_back(script); }
    void evaluate(std::string const& script, platform::WebView::Completion completion) override
    {
        scripts.push_back(script);
        pending.emplace_back([this, script, goOn = std::move(completion)] {
            goOn(script == pageScripts::hasFailureNotice() && hasNotice);
        });
    }

    /// The page answers every script, and those that follow from the answers.
    void answer()
    {
        while (!pending.empty()) {
            auto const next = pending.front();
            pending.erase(pending.begin());
            next();
        }
    }

    bool loading = false;
    bool hasNotice = false;
    Texts urls;
    Texts scripts;
    std::vector<platform::Task> pending;
};

class DetailedUsageTest : public ControllerTest {
protected:
    DetailedUsageTest()
    {
        platform.systemColors
            = [](platform::Appearance) { return platform::SystemColors { { 4, 4, 4 }, { 5, 5, 5 }, { 6, 6, 6 } }; };
        launchWith({ home, cottage });
        page().engine = &engine;
    }

    DetailedUsageLayout& detailed() { return outlets->detailedUsage; }
    platform::WebView& page() { return detailed().usageWebView; }
    platform::WebViewDelegate& events() { return *page().delegate; }

    void show()
    {
        controller->viewDailyUsageDataButton({});
        settle();
    }

    void pick(int year, unsigned month, unsigned day)
    {
        detailed().usageMonthPicker.userPicked(
            std::chrono::sys_days(std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(day)) + 12h);
    }

    /// A load from its start to its end; what the page answers is up to the test.
    void load()
    {
        events().didStartProvisionalLoadForFrame();
        engine.scripts.clear();
        events().didFinishLoadForFrame();
    }

    void loadAndAnswer()
    {
        load();
        engine.answer();
    }

    std::string state() const
    {
        auto const& window = outlets->detailedUsage;
        bool const isLoading = !window.progressIndicator.hidden.get() && !window.loadingText.hidden.get();
        bool const isShown = !window.usageWebView.hidden.get() && !window.usageMonthPicker.hidden.get();
        return isLoading == isShown ? "mixed" : isShown ? "shown" : "loading";
    }

    bool ran(std::string const& script) const
    {
        return std::ranges::find(engine.scripts, script) != engine.scripts.end();
    }

    static std::string address(std::string const& query) { return "https://tarvo.example/support/usage?" + query; }

    std::string const banner = pageScripts::banner(bundle.localizedString("DETAILED_USAGE_WARNING"));
    ScriptedEngine engine;
};

}

TEST_F(DetailedUsageTest, EveryShowingLoadsThePresentMonthAndLetsAYearBackBePicked)
{
    show();
    EXPECT_EQ(engine.urls, Texts { address("year=2026&month=3") });
    EXPECT_EQ(detailed().window.title.get(), "Daily Usage");
    EXPECT_EQ(detailed().usageMonthPicker.minDate.get(), std::chrono::sys_days(std::chrono::year(2025) / 3 / 10) + 10h);

    pick(2025, 3, 10);
    advance(1s);
    EXPECT_EQ(engine.urls.back(), address("year=2025&month=3"));
    loadAndAnswer();
    EXPECT_FALSE(ran(pageScripts::todayHighlight())) << "the same month of another year";
    detailed().window.userClosed();
    // The run goes on into another month, named as the user's calendar has it.
    advance(24h * 30);
    platform.dateLocale = "th_TH";
    show();
    EXPECT_EQ(state(), "loading");
    EXPECT_EQ(detailed().usageMonthPicker.minDate.get(), platform::addingMonths(runLoop.now(), -12));
    EXPECT_EQ(engine.urls.back(), address("year=2569&month=4"));
    EXPECT_EQ(detailed().usageMonthPicker.maxDate.get(), runLoop.now());
    EXPECT_EQ(engine.urls.size(), 3U);
}

TEST_F(DetailedUsageTest, QuickChangesOfTheMonthLeadToOneLoadOfTheLastOne)
{
    show();
    for (unsigned const month : { 2U, 1U, 3U }) {
        pick(2026, month, 1);
        advance(400ms);
    }
    EXPECT_EQ(engine.urls.size(), 1U);
    advance(100ms);
    EXPECT_EQ(engine.urls, (Texts { address("year=2026&month=3"), address("year=2026&month=3") }));
}

TEST_F(DetailedUsageTest, ThePageMayLeadToTheHostWithoutWwwOverHttpsAndNowhereElse)
{
    show();
    for (auto const& [url, expected] : { std::pair("https://tarvo.example/support/usage?year=2026&month=3", true),
             std::pair("https://tarvo.example", true), std::pair("https://www.tarvo.example/", false),
             std::pair("http://tarvo.example/", false), std::pair("https://example.org/", false),
             std::pair("about:blank", false), std::pair("file:///etc/passwd", false), std::pair("", false),
             // Anywhere in the text: as far as the rule reaches.
             std::pair("https://example.org/?back=https://tarvo.example/", true),
             std::pair("https://tarvo.example.org/", true) })
        EXPECT_EQ(events().decidePolicyForNavigationAction(url) == platform::NavigationPolicy::Use, expected) << url;
}

TEST_F(DetailedUsageTest, APageIsShownOnceItIsRestyledAndThenColoured)
{
    show();
    EXPECT_EQ(state(), "loading");
    EXPECT_TRUE(detailed().progressIndicator.spinning.get());
    engine.loading = true;
    load();
    EXPECT_EQ(engine.scripts, Texts()) << "another frame is still on its way";
    engine.loading = false;
    events().didFinishLoadForFrame();
    EXPECT_EQ(engine.scripts,
        (Texts { pageScripts::restyling(), pageScripts::todayHighlight(), pageScripts::todayLegend(), banner,
            pageScripts::nothing() }));
    EXPECT_EQ(state(), "loading");
    engine.scripts.clear();
    engine.answer();
    EXPECT_EQ(state(), "shown");
    Texts const colouring { pageScripts::pageBackground({ 4, 4, 4 }), pageScripts::pageText({ 5, 5, 5 }),
        pageScripts::boxBackground({ 6, 6, 6 }), pageScripts::rowBackground({ 6, 6, 6 }, true),
        pageScripts::hasFailureNotice() };
    EXPECT_EQ(engine.scripts, colouring);

    // The same load may end once more, and keeps its banner.
    engine.scripts.clear();
    events().didFinishLoadForFrame();
    EXPECT_FALSE(ran(banner));
    engine.answer();
    EXPECT_EQ(state(), "shown");

    pick(2026, 2, 28);
    advance(1s);
    loadAndAnswer();
    EXPECT_TRUE(ran(banner));
    EXPECT_FALSE(ran(pageScripts::todayHighlight()) || ran(pageScripts::todayLegend()));
    EXPECT_TRUE(ran(pageScripts::rowBackground({ 6, 6, 6 }, false)));
}

TEST_F(DetailedUsageTest, LateAnswersOfAnOlderLoadChangeNothing)
{
    show();
    engine.hasNotice = true;
    load();
    events().didStartProvisionalLoadForFrame();
    engine.answer();
    EXPECT_EQ(state(), "loading");

    // The page is shown, but its notice is read too late.
    load();
    while (state() == "loading")
        std::exchange(engine.pending, {}).back()();
    events().didStartProvisionalLoadForFrame();
    engine.answer();
    EXPECT_EQ(state(), "loading");
    EXPECT_EQ(alertOn(detailed().window), "");
}

TEST_F(DetailedUsageTest, ALoadThatEndsWhileTheNextOneIsPreparedLeavesThatOneItsBanner)
{
    show();
    controller->viewDailyUsageDataButton({});
    loadAndAnswer();
    settle();
    load();
    EXPECT_TRUE(ran(banner));
}

TEST_F(DetailedUsageTest, AFailedLoadAsksWhetherToTryAgain)
{
    show();
    pick(2026, 1, 5);
    advance(1s);
    events().didStartProvisionalLoadForFrame();
    events().didFailProvisionalLoadWithError(LoadError::CertificateNotTrusted);
    auto const alert = *std::get_if<std::shared_ptr<platform::Alert const>>(&detailed().window.attachedSheet.get());
    EXPECT_EQ(alert->informativeText, "Your provider’s page did not load. The site’s certificate is not trusted.");
    EXPECT_EQ(alert->buttons, (Texts { "Try Again", "Cancel" }));
    EXPECT_EQ(state(), "loading");

    detailed().window.userAnswered(platform::Alert::firstButtonReturn);
    settle();
    EXPECT_EQ(engine.urls.back(), address("year=2026&month=1"));
    EXPECT_EQ(engine.urls.size(), 3U);
}

TEST_F(DetailedUsageTest, HoweverOftenAPageFailsThereIsOnePromptAndOneNotice)
{
    engine.hasNotice = true;
    show();
    for (int i = 0; i < 3; ++i)
        loadAndAnswer();
    detailed().window.userAnswered(platform::Alert::firstButtonReturn);
    EXPECT_EQ(alertOn(detailed().window), "");
    auto const failAgainAndAgain = [this] {
        for (int i = 0; i < 3; ++i) {
            loadAndAnswer();
            events().didFailProvisionalLoadWithError(LoadError::Stopped);
            events().didFailLoadWithError(LoadError::PageLost);
        }
        EXPECT_EQ(alertOn(detailed().window), bundle.localizedString("USAGE_ERROR_TITLE"));
    };
    auto& window = detailed().window;
    failAgainAndAgain();
    window.userAnswered(platform::Alert::firstButtonReturn);
    EXPECT_EQ(alertOn(window), bundle.localizedString("USAGE_DETAIL_ERROR_LOAD_TITLE"));
    loadAndAnswer();
    window.userAnswered(platform::Alert::firstButtonReturn + 1);
    EXPECT_FALSE(window.visible.get()) << "a notice that waits does not hold it up";

    for (auto const& leave : { std::function<void()>([&] { window.userClosed(); }), std::function<void()>([this] {
                                  pick(2026, 2, 1);
                                  advance(1s);
                              }) }) {
        show();
        failAgainAndAgain();
        leave();
        EXPECT_EQ(alertOn(window), "");
    }
    EXPECT_TRUE(window.visible.get());
    EXPECT_EQ(engine.urls.back(), address("year=2026&month=2"));
}
