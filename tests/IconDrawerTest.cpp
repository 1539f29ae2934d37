// SPDX-License-Identifier: MIT
#include "desktop/IconDrawer.h"
#include "desktop/DesktopRunLoop.h"
#include "draw/StatusIcon.h"
#include "platform/ThreadQueues.h"
#include "tests/support/TemporaryFolder.h"
#include "windows/ToolkitLoop.h"

#include <QTest>

#include <gtest/gtest.h>

#include <fstream>

using namespace std::chrono_literals;
using Pictures = std::vector<StatusPixmap>;
using Answers = std::vector<std::pair<std::string, Pictures>>;

struct IconDrawerTest : testing::Test {
    void TearDown() override
    {
        EXPECT_TRUE(queues.waitUntilIdle(5s)) << "a helper holds up the end";
        QCoreApplication::processEvents();
    }

    IconDrawer drawerOf(std::string const& script, std::chrono::milliseconds limit)
    {
        auto const file = folder.path() / "helper";
        std::ofstream(file) << "#!/bin/sh\n" << script << '\n';
        std::filesystem::permissions(file, std::filesystem::perms::owner_all);
        return { file, loop, queues, limit };
    }

    /// What is answered to each title that is answered, when all are asked for in one turn.
    Answers answers(IconDrawer&& drawer, std::vector<std::string> const& titles, StatusLook look = StatusLook::Icon)
    {
        Answers all;
        for (auto const& title : titles)
            drawer.draw(title, look, [&all, title](Pictures const& each) { all.emplace_back(title, each); });
        EXPECT_TRUE(QTest::qWaitFor([&] { return !all.empty() && all.back().first == titles.back(); }, 20'000));
        return all;
    }

    TemporaryFolder folder;
    DesktopRunLoop loop;
    ToolkitLoop const around { loop };
    platform::ThreadQueues queues;
};

TEST_F(IconDrawerTest, TheHelperDrawsWhatTheProgramWouldDrawAndOnlyTheLatestOfWhatIsAskedForMeanwhile)
{
    for (auto const look : { StatusLook::Icon, StatusLook::WideIcon, StatusLook::Label }) {
        Answers const expected { { "5 é", statusPixmaps("5 é", look) }, { "漢\n", statusPixmaps("漢\n", look) } };
        EXPECT_TRUE(answers({ USAGE_METER_DRAW, loop, queues }, { "5 é", "1", "2", "漢\n" }, look) == expected);
    }
}

TEST_F(IconDrawerTest, NothingComesOfADrawingThatWentWrong)
{
    EXPECT_EQ(answers({ USAGE_METER_DRAW, loop, queues }, { "\xFF" })[0].second, Pictures());
    EXPECT_EQ(answers({ "/nonexistent", loop, queues }, { "1" })[0].second, Pictures());
    for (char const* script : { "kill -STOP $$", "exec cat /dev/zero", "echo nonsense", "printf '1 1\\nabc'",
             "printf '0 1\\n'", "printf '65536 65536\\n'", "printf '1 1\\nabcd'; exit 1", "printf '1 1\\nabcde'" })
        EXPECT_EQ(answers(drawerOf(script, 200ms), { "1" })[0].second, Pictures()) << script;
}

TEST_F(IconDrawerTest, ADrawerThatGoesEndsItsHelperAndAnswersNoMore)
{
    for (char const* script : { "kill -STOP $$", "exit 0" })
        drawerOf(script, 60s).draw("57.3GB", StatusLook::Icon, [](Pictures const&) { FAIL(); });
}
