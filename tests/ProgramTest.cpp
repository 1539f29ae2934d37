// SPDX-License-Identifier: MIT
#include "tests/support/RunningProgramTest.h"

#include <QTest>

using namespace std::chrono_literals;
using namespace std::string_literals;

struct ProgramTest : RunningProgramTest {
    static constexpr char const* preferences = "^Usage Meter Preferences$";

    static bool isShown(char const* window)
    {
        QStringList const search { "search", "--onlyvisible", "--name", QLatin1String(window) };
        return QProcess::execute(QStringLiteral("xdotool"), search) == 0;
    }

    /// Waits until each of these lines is shown exactly once, whatever else there is.
    bool waitForLines(Texts const& expected)
    {
        auto const isShown = [this](auto const& text) { return std::ranges::count(lines(), text) == 1; };
        return waitFor([&] { return std::ranges::all_of(expected, isShown); });
    }
};

TEST_F(ProgramTest, ShowsTheProvidersReplyTheWayItsUserReadsIt)
{
    demo::Reply const cutOff { homeReport_, demo::Manner::CutOff };
    std::vector<std::tuple<char const*, char const*, demo::Reply, char const*, Texts>> const examples {
        { "en_US.UTF-8", "100", { homeReport_ }, "57.3GB",
            { "Downloaded: 52.35GB", "Downloaded free of charge: 1.2GB", "All traffic: 57.3GB", "Remaining: 44.2GB" } },
        { "en_US.UTF-8", "", cutOff, "No data", { "Downloaded: Error", "All traffic: Error" } },
        { "fr_FR.UTF-8", "", { homeReport_ }, "57,3GB",
            { "Téléchargé\u00A0: 52,35GB", "Actualiser maintenant", "Quitter" } },
    };
    for (auto const& [locale, cap, reply, title, lines] : examples) {
        std::filesystem::remove_all(program_.cacheFolder);
        program_.setVariable("LC_ALL", locale);
        provider_->setReply("secretOne", reply);
        program_.startWith({ home }, cap);
        EXPECT_TRUE(waitForTitle(title)) << reader_.title().toStdString();
        EXPECT_TRUE(waitForLines(lines));
        stop();
    }
}

TEST_F(ProgramTest, AChosenConnectionIsKeptForItsUserAlone)
{
    program_.startWith({ home, cottage });
    ASSERT_TRUE(waitForTitle("57.3GB"));
    ASSERT_TRUE(waitForLines({ "Connection", "  * Home - secretOne", "  Cottage - secretTwo" }));
    ASSERT_TRUE(click(cottage));
    EXPECT_TRUE(waitForTitle("5.2GB"));
    EXPECT_TRUE(waitForLines({ "  Home - secretOne", "  * Cottage - secretTwo" }));

    auto const arguments = platform::readFile("/proc/" + std::to_string(program_.processId()) + "/cmdline");
    EXPECT_EQ(arguments->find("secret"), std::string::npos);
    stop();
    for (auto const& path : { program_.settingsFile, program_.cacheFolder / "secretOne", program_.cacheFolder })
        EXPECT_EQ(std::filesystem::status(path).permissions() & std::filesystem::perms(0077), std::filesystem::perms());
    provider_->setReport("secretTwo", homeReport_);
    program_.start();
    EXPECT_TRUE(waitForTitle("5.2GB")) << "its report is kept too";
}

TEST_F(ProgramTest, AnswersItsUserWhileTheProviderDoesNot)
{
    provider_->setReply("secretOne", { homeReport_, demo::Manner::Never });
    program_.startWith({ home, cottage });
    ASSERT_TRUE(provider_->waitForRequests("secretOne", 1, bound));
    ASSERT_TRUE(waitForTitle("…"));
    EXPECT_TRUE(waitForLines({ "Downloaded: …" }));
    ASSERT_TRUE(click(cottage));
    EXPECT_TRUE(waitForTitle("5.2GB")) << "a load that waits holds up no other";
    ASSERT_TRUE(click("Quit"));
    EXPECT_EQ(program_.waitForExit(1s), 0);
}

TEST_F(ProgramTest, ASecondStartShowsThePreferencesOfTheFirst)
{
    startScreen();
    program_.startWith({ home, cottage });
    ASSERT_TRUE(waitForTitle("57.3GB"));
    EXPECT_FALSE(isShown(preferences));
    ProgramUnderTest second;
    second.start();
    EXPECT_EQ(second.waitForExit(bound), 0) << second.output();
    EXPECT_TRUE(QTest::qWaitFor([] { return isShown(preferences); }));
    EXPECT_EQ(provider_->requestCount("secretOne"), 1);

    program_.signal(SIGSTOP);
    second.start();
    EXPECT_EQ(second.waitForExit(bound), 1);
    EXPECT_EQ(second.output(), "usage-meter: already running, but not responding\n");
}

TEST_F(ProgramTest, GoesOnAsItWasStartedDuringAnUpgrade)
{
    startScreen();
    program_.startWith({ home });
    ASSERT_TRUE(waitForTitle("57.3GB"));
    // As a package manager puts a new one into the place of a part.
    platform::writeFileAtomically(program_.find("usage-meter-windows.so"), "another build's");
    ASSERT_TRUE(click("Preferences…"));
    EXPECT_TRUE(QTest::qWaitFor([] { return isShown(preferences); }));
    stop();
}

TEST_F(ProgramTest, TheDisplaysEndLosesNothing)
{
    startScreen();
    program_.startWith({ home, cottage });
    ASSERT_TRUE(waitForTitle("57.3GB"));
    provider_->setReply("secretTwo", { cottageReport_, demo::Manner::Never });
    ASSERT_TRUE(click(cottage));
    ASSERT_TRUE(provider_->waitForRequests("secretTwo", 1, bound));
    screen_.kill();
    EXPECT_EQ(program_.waitForExit(bound), 1);
    EXPECT_EQ(std::ranges::count(program_.output(), '\n'), 1) << program_.output();
    provider_->setReport("secretTwo", cottageReport_);
    program_.setVariable("QT_QPA_PLATFORM", "offscreen");
    program_.start();
    EXPECT_TRUE(waitForTitle("5.2GB")) << "the choice is kept";
}

TEST_F(ProgramTest, SaysInOneLineWhyItCannotStart)
{
    program_.setVariable("LC_ALL", "C.UTF-8");
    program_.setVariable("QT_QPA_PLATFORM", "xcb");
    program_.setVariable("DISPLAY", "");
    program_.start();
    EXPECT_EQ(program_.waitForExit(bound), 1);
    std::string const noDisplay = program_.output();
    EXPECT_TRUE(noDisplay.starts_with("usage-meter: ")) << noDisplay;
    EXPECT_EQ(std::ranges::count(noDisplay, '\n'), 1) << noDisplay;

    program_.setVariable("QT_QPA_PLATFORM", "offscreen");
    std::filesystem::remove(program_.infoFile);
    program_.start();
    EXPECT_EQ(program_.waitForExit(bound), 1);
    EXPECT_EQ(program_.output(), noDisplay + "usage-meter: " + program_.infoFile.string() + " is missing or damaged\n");
}
