// SPDX-License-Identifier: MIT
// The real program in use for USAGE_METER_SECONDS (15 minutes when that is not set), at a refresh a second.
#include "demo/Provider.h"
#include "desktop/DesktopRunLoop.h"
#include "tests/support/PanelTest.h"
#include "tests/support/ProgramUnderTest.h"

#include <QElapsedTimer>
#include <QTest>

#include <ctime>
#include <fstream>
#include <iostream>

using namespace std::chrono_literals;

namespace {

constexpr int secondsAMinute = 60;

struct Cost {
    /// Of memory that is no file's, and so is nobody else's either.
    long kilobytes = 0;
    long handles = 0;
    long threads = 0;
};

class LongUse : public PanelTest {
protected:
    LongUse()
    {
        startWatcher();
        program_.setInfo("ProviderHost", provider_->host());
        program_.setInfo("ProviderCertificateAuthority", certificate_.authority);
    }

    /// Sets what the connection has used by now, in whole gigabytes.
    void setUsage(char const* key, std::uint64_t gigabytes)
    {
        provider_->setReport(key, demo::reportBody({ 0, 0, 0, 0, gigabytes * 1'000'000'000, 0 }));
    }

    bool waitForTitle(std::string const& title)
    {
        return waitFor([&] { return reader_.hasItem() && reader_.title().toStdString() == title; });
    }

    std::filesystem::path processFolder() const { return "/proc/" + std::to_string(program_.processId()); }

    long entriesOf(char const* folder) const
    {
        return std::distance(std::filesystem::directory_iterator(processFolder() / folder), {});
    }

    Cost cost() const
    {
        Cost cost { .handles = entriesOf("fd"), .threads = entriesOf("task") };
        std::ifstream memory(processFolder() / "smaps_rollup");
        for (std::string word; memory >> word;) {
            if (word == "Anonymous:")
                memory >> cost.kilobytes;
        }
        return cost;
    }

    /// What a user does in this second; the figure that is asked for is shown at its end.
    void use(int second)
    {
        auto const gigabytes = static_cast<std::uint64_t>(second % 900 + 2);
        setUsage("secretOne", gigabytes);
        setUsage("secretTwo", gigabytes);
        if (second % 10 == 9) {
            ASSERT_TRUE(reader_.click(second % 20 == 19 ? home : cottage, bound));
            ASSERT_TRUE(waitFor([this] { return !reader_.title().startsWith(QStringLiteral("Please")); }));
        }
        if (second % 30 == 15) {
            provider_->setReply("secretOne", { "no report", demo::Manner::CutOff });
            provider_->setReply("secretTwo", { "no report" });
            ASSERT_TRUE(reader_.click(QStringLiteral("Update Now"), bound));
            ASSERT_TRUE(waitForTitle("No data"));
            return;
        }
        ASSERT_TRUE(reader_.click(QStringLiteral("Update Now"), bound));
        ASSERT_TRUE(waitForTitle(std::to_string(gigabytes) + "GB")) << reader_.title().toStdString();
    }

    static constexpr char const* home = "Home - secretOne";
    static constexpr char const* cottage = "Cottage - secretTwo";

    TemporaryFolder folder_;
    demo::CertificateFiles certificate_ = *demo::makeCertificate(folder_.path() / "certificate");
    std::unique_ptr<demo::Provider> provider_ = demo::Provider::start(certificate_);
    ProgramUnderTest program_;
};

TEST_F(LongUse, ARefreshASecondLeavesMemoryHandlesAndThreadsLevel)
{
    int const seconds = qEnvironmentVariableIsSet("USAGE_METER_SECONDS")
        ? qEnvironmentVariableIntValue("USAGE_METER_SECONDS")
        : 15 * secondsAMinute;
    setUsage("secretOne", 1);
    program_.startWith({ home, cottage });
    ASSERT_TRUE(waitForTitle("1,000MB"));

    std::vector<Cost> costs;
    QElapsedTimer clock;
    clock.start();
    for (int second = 1; second <= seconds; ++second) {
        ASSERT_NO_FATAL_FAILURE(use(second)) << "in second " << second;
        std::ignore = QTest::qWaitFor([&] { return clock.hasExpired(1000LL * second); }, 1000);
        if (second % secondsAMinute != 0)
            continue;
        costs.push_back(cost());
        std::cout << costs.size() << " min: " << costs.back().kilobytes << " kB, " << costs.back().handles
                  << " handles, " << costs.back().threads << " threads" << std::endl;
    }
    ASSERT_GE(costs.size(), 5U) << "too short to tell";
    // What is made once is there after the third minute.
    EXPECT_LT(costs.back().kilobytes, costs[2].kilobytes + 200);
    EXPECT_EQ(costs.back().handles, costs[2].handles);
    EXPECT_LE(costs.back().threads, costs[2].threads);
    EXPECT_EQ(program_.output(), "");
}

// Sets the clock to what it is, which the kernel tells of like of any other time. Needs to be root.
TEST_F(LongUse, AClockThatIsSetIsHeardOfAtOnce)
{
    DesktopRunLoop loop;
    int told = 0;
    auto const observation = loop.observeClockChange([&told] { ++told; });
    auto const timer = loop.repeat(loop.now() + 1h, 1h, [] { FAIL() << "not due"; });
    for (int time = 1; time <= 3; ++time) {
        timespec now {};
        clock_gettime(CLOCK_REALTIME, &now);
        ASSERT_EQ(clock_settime(CLOCK_REALTIME, &now), 0);
        ASSERT_TRUE(QTest::qWaitFor([&] { return told == time; }));
    }
}

}
