// SPDX-License-Identifier: MIT
#include "tests/support/ControllerTest.h"

namespace {

class PresentationTest : public ControllerTest {
protected:
    void launchWithCap(char const* cap)
    {
        defaults.set(settings::usageCapValues, platform::Dictionary { { home, cap } });
        loader.replies[addressOf("K1")] = report;
        launchWith({ home, cottage });
    }

    void presentWithCap(char const* cap)
    {
        outlets->usageLimit.userTyped(cap);
        controller->updateTitleBar();
        settle();
    }

    /// The volumes of the usage window, row by row, with their tool tips.
    Texts volumes() const
    {
        Texts texts;
        for (auto const* const field : { &outlets->downloadUsage, &outlets->uploadUsage, &outlets->totalUsage,
                 &outlets->downloadFreeUsage, &outlets->uploadFreeUsage, &outlets->totalFreeUsage,
                 &outlets->finalTotalUsage, &outlets->usageCapText, &outlets->usageRemainingText })
            texts.push_back(field->text.get() + " = " + field->toolTip.get());
        return texts;
    }

    double levelOpacity() const { return outlets->usageBar.opacity.at(runLoop.uptime()); }

    std::string const report = "<u><used><download>52345678901</download><upload>3456789012</upload></used><grace>"
                               "<download>1200000000</download><upload>300000000</upload></grace><total>"
                               "<download>53545678901</download><upload>3756789012</upload></total></u>";
};

}

TEST_F(PresentationTest, ShowsAReportUnderItsCapOverItAndWithoutOne)
{
    launchWithCap("100");
    EXPECT_EQ(title(), "57.3GB");
    EXPECT_EQ(volumes(),
        (Texts { "52.35GB = 52,345.68MB", "3.46GB = 3,456.79MB", "55.8GB = 55,802.47MB", "1.2GB = 1,200MB",
            "0.3GB = 300MB", "1.5GB = 1,500MB", "57.3GB = 57,302.47MB", "100GB = 100,000MB", "44.2GB = 44,197.53MB" }));
    EXPECT_EQ(outlets->usageBar.maxValue.get(), 100000);
    EXPECT_DOUBLE_EQ(outlets->usageBar.doubleValue.get(), 55802.467913);
    EXPECT_EQ(outlets->usageBar.warningValue.get(), 70000);
    EXPECT_EQ(outlets->usageBar.criticalValue.get(), 85000);
    EXPECT_EQ(outlets->usageCapPercentageText.text.get(), "55.8%");
    EXPECT_EQ(outlets->monitorWindow.title.get(), "Usage Meter - Home");

    // The field counts, not what is stored.
    presentWithCap("50");
    EXPECT_EQ(volumes().back(), "-5.8GB = -5,802.47MB");
    EXPECT_EQ(outlets->usageCapPercentageText.text.get(), "111.6%");
    EXPECT_EQ(controller->usageCapForKey(home), "100");

    presentWithCap("");
    EXPECT_EQ(volumes().at(7), "∞ = Unlimited");
    EXPECT_EQ(volumes().at(8), "∞ = Unlimited");
}

TEST_F(PresentationTest, FadesTheLevelWithTheCap)
{
    launchWithCap("100");
    EXPECT_FALSE(outlets->usageBar.hidden.get());
    EXPECT_EQ(levelOpacity(), 0.0);
    // A fade goes on from where the one before has come to.
    advance(250ms);
    presentWithCap("");
    advance(250ms);
    EXPECT_EQ(levelOpacity(), 0.25);
    presentWithCap("100");
    advance(500ms);
    EXPECT_EQ(levelOpacity(), 1.0);
    // Shown already: nothing to fade.
    presentWithCap("100");
    EXPECT_EQ(levelOpacity(), 1.0);

    presentWithCap("");
    advance(250ms);
    EXPECT_EQ(levelOpacity(), 0.5);
    // The cap is back before the bar has gone: it fades in from nothing, and the old fade's end does not keep it away.
    presentWithCap("50");
    EXPECT_EQ(levelOpacity(), 0.0);
    advance(250ms);
    EXPECT_TRUE(outlets->usageBar.hidden.get());
    advance(250ms);
    EXPECT_FALSE(outlets->usageBar.hidden.get());
    EXPECT_FALSE(outlets->usageCapPercentageText.hidden.get());
    EXPECT_EQ(levelOpacity(), 1.0);
}

TEST_F(PresentationTest, AFailureLeavesTheLastGoodFiguresBesideItsTexts)
{
    launchWithCap("100");
    advance(1min);
    failReply("K1");
    refresh();
    advance(1s);
    EXPECT_EQ(title(), "No data");
    auto lines = linesOf(outlets->dropDownMenu);
    lines.resize(6);
    EXPECT_EQ(lines,
        (Texts { "Downloaded: Error", "Downloaded free of charge: Error", "All traffic: Error", "Usage cap: 100GB",
            "Remaining: 44.2GB", lastUpdate(at(10, 0)) }));
    for (auto const& volume : volumes())
        EXPECT_TRUE(volume.starts_with("No data = ")) << volume;
    EXPECT_EQ(volumes().at(7), "No data = 100,000MB");
    EXPECT_EQ(outlets->usageCapPercentageText.text.get(), "55.8%");
    EXPECT_EQ(outlets->monitorWindow.title.get(), "Usage Meter - Home");

    // Why is said in words, until the next success.
    auto const& status = outlets->refreshStatus.text;
    EXPECT_EQ(status.get(), bundle.localizedString("REFRESH_FAILED"));
    controller->updateButton();
    EXPECT_EQ(status.get(), bundle.localizedString("REFRESH_WAITING"));
    setReply("K1", 10);
    settle();
    EXPECT_EQ(status.get(), "");
}
