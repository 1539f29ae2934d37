// SPDX-License-Identifier: MIT
#include "tests/support/ControllerTest.h"

struct PresentationTest : ControllerTest {
    PresentationTest()
    {
        loader.replies[addressOf("K1")]
            = "<u><used><download>52345678901</download><upload>3456789012</upload></used><grace><download>1200000000"
              "</download><upload>300000000</upload></grace><total><download>53545678901</download><upload>3756789012"
              "</upload></total></u>";
        launchWith({ home });
        presentWithCap("100");
        advance(1s);
    }

    void presentWithCap(char const* cap)
    {
        outlets->usageLimit.userTyped(cap);
        controller->updateTitleBar();
        settle();
    }

    /// The volumes of the usage window row by row, each with its tool tip.
    Texts volumes() const
    {
        Texts texts;
        for (auto const* const field : { &outlets->downloadUsage, &outlets->uploadUsage, &outlets->totalUsage,
                 &outlets->downloadFreeUsage, &outlets->uploadFreeUsage, &outlets->totalFreeUsage,
                 &outlets->finalTotalUsage, &outlets->usageCapText, &outlets->usageRemainingText })
            texts.push_back(field->text.get() + " = " + field->toolTip.get());
        return texts;
    }
};

TEST_F(PresentationTest, ShowsAReportWithOrWithoutACap)
{
    EXPECT_EQ(volumes(),
        (Texts { "52.35GB = 52,345.68MB", "3.46GB = 3,456.79MB", "55.8GB = 55,802.47MB", "1.2GB = 1,200MB",
            "0.3GB = 300MB", "1.5GB = 1,500MB", "57.3GB = 57,302.47MB", "100GB = 100,000MB", "44.2GB = 44,197.53MB" }));
    auto const& bar = outlets->usageBar;
    for (auto const& [shown, expected] : { std::pair(&bar.maxValue, 1e5), { &bar.doubleValue, 55802.467913 },
             { &bar.warningValue, 70000 }, { &bar.criticalValue, 85000 } })
        EXPECT_DOUBLE_EQ(shown->get(), expected);
    EXPECT_TRUE(outlets->setCapButton.hidden.get());

    presentWithCap("50");
    EXPECT_EQ(volumes().back(), "-5.8GB = -5,802.47MB");
    EXPECT_EQ(outlets->usageCapPercentageText.text.get(), "111.6%");
    presentWithCap("");
    EXPECT_EQ(volumes().at(7), "∞ = Unlimited");
    EXPECT_EQ(volumes().at(8), "∞ = Unlimited");
    EXPECT_FALSE(outlets->setCapButton.hidden.get());
}

TEST_F(PresentationTest, AReportOfOneFigureHasATotalOfAtMostAThousandWhereTheUnitsReach)
{
    for (auto const& [total, shown] : { std::pair("<download>1000000000</download>", "1,000MB"),
             { "<download>1010000000</download>", "1.01GB" }, { "<upload>2500000000000000</upload>", "2.5PB" },
             { "<upload>5000000000000000000</upload>", "5,000PB" }, { "<upload/>", "0MB" }, { "", "No data" } }) {
        loader.replies[addressOf("K1")] = std::string("<u><total>") + total + "</total></u>";
        refresh();
        EXPECT_EQ(title(), shown);
    }
    loader.replies[addressOf("K1")] = "<u><used><download>1e999</download></used></u>";
    refresh();
    EXPECT_EQ(outlets->usageCapPercentageText.text.get().find("∞"), std::string::npos);
}

TEST_F(PresentationTest, FadesTheLevelWithTheCap)
{
    auto const& level = outlets->usageBar;
    // A fade goes on from where the one before has come to. What is shown already has nothing to fade; a cap that is
    // back before the bar has gone begins from nothing, and the old fade's end does not keep it away.
    for (auto const& [cap, first, wait, then] : { std::tuple("", 1.0, 500ms, 0.0), { "100", 0.0, 250ms, 0.5 },
             { "", 0.5, 250ms, 0.25 }, { "100", 0.0, 500ms, 1.0 }, { "100", 1.0, 0ms, 1.0 }, { "", 1.0, 250ms, 0.5 },
             { "50", 0.0, 500ms, 1.0 } }) {
        presentWithCap(cap);
        EXPECT_EQ(level.opacity.at(runLoop.uptime()), first);
        advance(wait);
        EXPECT_EQ(level.opacity.at(runLoop.uptime()), then);
        EXPECT_EQ(level.hidden.get(), then == 0.0);
        EXPECT_EQ(outlets->usageCapPercentageText.hidden.get(), then == 0.0);
    }
}

TEST_F(PresentationTest, AFailureLeavesTheLastGoodFiguresBesideItsTexts)
{
    failReply("K1");
    advance(1h);
    refresh();
    advance(1s);
    auto lines = linesOf(outlets->dropDownMenu);
    lines.resize(6);
    EXPECT_EQ(lines,
        (Texts { "Downloaded: Error", "Downloaded free of charge: Error", "All traffic: Error", "Usage cap: 100GB",
            "Remaining: 44.2GB", lastUpdate(at(10, 0)) }));
    for (auto const& volume : volumes())
        EXPECT_TRUE(volume.starts_with("No data = ")) << volume;
    EXPECT_EQ(volumes().at(7), "No data = 100,000MB");
    EXPECT_EQ(outlets->usageCapPercentageText.text.get(), "55.8%");

    // Why is said in words, until the next success.
    auto const& status = outlets->refreshStatus.text;
    EXPECT_EQ(status.get(), textOf("REFRESH_FAILED"));
    setReply("K1", 10);
    controller->updateButton();
    EXPECT_EQ(status.get(), textOf("REFRESH_WAITING"));
    settle();
    EXPECT_EQ(status.get(), "");
}
