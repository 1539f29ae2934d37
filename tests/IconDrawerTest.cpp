// SPDX-License-Identifier: MIT
#include "desktop/IconDrawer.h"
#include "desktop/DesktopRunLoop.h"
#include "draw/StatusIcon.h"
#include "platform/ThreadQueues.h"
#include "tests/support/TemporaryFolder.h"
#include "windows/ToolkitLoop.h"

#include <QTest>

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using Pictures = std::vector<StatusPixmap>;
using Answers = std::vector<std::pair<std::string, Pictures>>;

struct IconDrawerTest : testing::Test {
    void TearDown() override
    {
        EXPECT_TRUE(queues.waitUntilIdle(5s)) << "a helper holds up the end";
        QCoreApplication::processEvents();
    }

    /// What is answered to each title that is answered, when all are asked for in one turn.
    Answers answers(
        std::filesystem::path const& helper, std::vector<std::string> const& titles, StatusLook look = StatusLook::Icon)
    {
        IconDrawer drawer(helper, loop, queues, 60s);
        Answers all;
        auto const draw = [&](std::string const& title) {
            drawer.draw(title, look, [&all, title](Pictures const& each) { all.emplace_back(title, each); });
        };
        auto const waitFor = [&all](std::string const& title) {
            EXPECT_TRUE(QTest::qWaitFor([&] { return !all.empty() && all.back().first == title; }, 20'000));
        };
        std::ranges::for_each(titles, draw);
        waitFor(titles.back());
        draw("later");
        waitFor("later");
        all.pop_back();
        return all;
    }

    TemporaryFolder folder;
    DesktopRunLoop loop;
    ToolkitLoop const around { loop };
    platform::ThreadQueues queues;
};

TEST_F(IconDrawerTest, TheHelperDrawsTheLatestTitleAsTheProgramWould)
{
    for (auto const look : { StatusLook::Icon, StatusLook::WideIcon, StatusLook::Label }) {
        Answers const expected { { "5 é", statusPixmaps("5 é", look) }, { "漢\n", statusPixmaps("漢\n", look) } };
        EXPECT_TRUE(answers(USAGE_METER_DRAW, { "5 é", "1", "2", "漢\n" }, look) == expected);
    }
}

TEST_F(IconDrawerTest, NothingComesOfADrawingThatWentWrong)
{
    EXPECT_EQ(answers(USAGE_METER_DRAW, { "\xFF" }), (Answers { { "\xFF", {} } }));
    for (char const* script : { "exec cat /dev/zero", "echo nonsense", "printf '1 1\\nabc'", "printf '0 1\\n'",
             "printf '65536 65536\\n'", "printf '1 1\\nabcd'; exit 1", "printf '1 1\\nabcde'" })
        EXPECT_EQ(answers(folder.script(script), { "1" }), (Answers { { "1", {} } })) << script;
}

TEST_F(IconDrawerTest, AHelperThatHangsHoldsUpNeitherAnotherNorTheEnd)
{
    IconDrawer drawer(folder.script("kill -STOP $$"), loop, queues, 60s);
    drawer.draw("1", StatusLook::Icon, [](Pictures const&) { FAIL(); });
    EXPECT_FALSE(queues.waitUntilIdle(1ms));
    EXPECT_EQ(answers(USAGE_METER_DRAW, { "1" }).size(), 1U);
}
