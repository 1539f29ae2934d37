// SPDX-License-Identifier: MIT
// The real program against a real provider, seen from where its user sees it: the status area and the disk.
#include "demo/Provider.h"
#include "tests/support/PanelTest.h"
#include "tests/support/ProgramUnderTest.h"
#include "tests/support/Slowness.h"
#include "tests/support/TlsServer.h"

#include <QElapsedTimer>
#include <QTest>

#include <algorithm>
#include <fstream>
#include <sys/stat.h>

using namespace std::chrono_literals;
using namespace std::string_literals;

namespace {

constexpr auto promptness = 100ms * slowness;

constexpr char const* home = "Home - secretOne";
constexpr char const* cottage = "Cottage - secretTwo";
std::string const homeReport
    = demo::reportBody({ 52'345'678'901, 3'456'789'012, 1'200'000'000, 300'000'000, 53'545'678'901, 3'756'789'012 });
std::string const cottageReport = demo::reportBody({ 4'812'000'000, 391'000'000, 0, 0, 4'812'000'000, 391'000'000 });

class ProgramTest : public PanelTest {
protected:
    ProgramTest()
    {
        startWatcher();
        program_.setInfo("ProviderHost", provider_->host());
        program_.setInfo("ProviderCertificateAuthority", certificate_.authority);
        provider_->setReport("secretOne", homeReport);
        provider_->setReport("secretTwo", cottageReport);
    }

    /// Whatever happened, a key is nobody's business.
    ~ProgramTest() override { EXPECT_EQ(program_.output().find("secret"), std::string::npos) << program_.output(); }

    bool waitForTitle(std::string const& title)
    {
        return waitFor([&] { return reader_.hasItem() && reader_.title().toStdString() == title; });
    }

    /// Each of these once, whatever else there is.
    bool waitForLines(Texts const& expected)
    {
        auto const isShown = [this](auto const& text) { return std::ranges::count(lines(), text) == 1; };
        return waitFor([&] { return std::ranges::all_of(expected, isShown); });
    }

    bool click(char const* text) { return reader_.click(QString::fromUtf8(text), bound); }

    void stop()
    {
        program_.signal(SIGTERM);
        ASSERT_EQ(program_.waitForExit(bound), 0);
        ASSERT_TRUE(waitFor([this] { return !reader_.hasItem(); }));
    }

    TemporaryFolder folder_;
    demo::CertificateFiles certificate_ = *demo::makeCertificate(folder_.path() / "certificate");
    std::unique_ptr<demo::Provider> provider_ = demo::Provider::start(certificate_);
    ProgramUnderTest program_;
};

TEST_F(ProgramTest, ShowsTheProvidersFiguresTheWayItsUserReadsThem)
{
    std::vector<std::tuple<char const*, char const*, char const*, Texts>> const examples {
        { "en_US.UTF-8", "100", "57.3GB",
            { "Downloaded: 52.35GB", "Downloaded free: 1.2GB", "All traffic: 57.3GB", "Remaining: 44.2GB" } },
        { "en_US.UTF-8", "", "57.3GB", { "Usage cap: Unlimited", "Remaining: Unlimited" } },
        { "fr_FR.UTF-8", "", "57,3GB", { "Téléchargé\u00A0: 52,35GB", "Actualiser maintenant", "Quitter" } },
    };
    for (auto const& [locale, cap, title, lines] : examples) {
        std::filesystem::remove_all(program_.cacheFolder);
        program_.setVariable("LC_ALL", locale);
        program_.startWith({ home }, cap);
        EXPECT_TRUE(waitForTitle(title)) << reader_.title().toStdString();
        EXPECT_TRUE(waitForLines(lines));
        stop();
    }
}

TEST_F(ProgramTest, ShowsWhateverIsInItsWayAndRecoversWithoutARestart)
{
    std::string const ok = "HTTP/1.1 200 OK\r\n\r\n";
    TlsReply const good { ok + homeReport };
    std::vector<std::tuple<ServerFault, TlsReply, char const*>> const faults {
        { ServerFault::none, { "HTTP/1.1 503 Busy\r\n\r\n<html><body>Back soon<br></body></html>" }, "No data" },
        { ServerFault::none, { ok + "<html><body>Sign in to the network</body></html>" }, "No data" },
        { ServerFault::none, { ok + homeReport.substr(0, homeReport.size() - 10), Ending::cutOff }, "No data" },
        { ServerFault::none, { ok + "<usage><plan>Caf\xe9</plan></usage>" }, "No data" },
        { ServerFault::none, { "", Ending::silent }, "Please wait…" },
        { ServerFault::plain, { "", Ending::reset }, "No data" },
        { ServerFault::wrongHost, good, "No data" },
    };
    std::optional<TlsServer> server;
    std::string port = "0";
    auto const serve = [&](ServerFault fault, TlsReply const& reply) {
        server.reset();
        server.emplace(
            folder_.path(), fault, [reply](auto const&) { return reply; }, port);
        port = server->port();
    };
    serve(ServerFault::none, good);
    program_.setInfo("ProviderHost", "localhost:" + port);
    program_.setInfo("ProviderCertificateAuthority", server->authority());
    program_.startWith({ home });
    ASSERT_TRUE(waitForTitle("57.3GB"));
    for (auto const& [fault, reply, title] : faults) {
        serve(fault, reply);
        ASSERT_TRUE(click("Update Now"));
        EXPECT_TRUE(waitForTitle(title)) << reply.text;
        EXPECT_TRUE(title != "No data"s || waitForLines({ "Downloaded: Error", "All traffic: Error" }));
        serve(ServerFault::none, good);
        ASSERT_TRUE(click("Update Now"));
        EXPECT_TRUE(waitForTitle("57.3GB")) << reply.text;
    }
}

TEST_F(ProgramTest, KeepsTheKeyFromStrangers)
{
    program_.startWith({ home });
    ASSERT_TRUE(waitForTitle("57.3GB"));
    auto const commandLine = platform::readFile("/proc/" + std::to_string(program_.processId()) + "/cmdline");
    EXPECT_EQ(commandLine->find("secret"), std::string::npos);
    stop();

    auto const stranger = *demo::makeCertificate(folder_.path() / "stranger");
    program_.setInfo("ProviderCertificateAuthority", stranger.authority);
    program_.startWith({ cottage });
    EXPECT_TRUE(waitForTitle("No data"));
    EXPECT_EQ(provider_->requestCount("secretTwo"), 0) << "the key went to a stranger";
}

TEST_F(ProgramTest, StartsFromItsCacheUnlessItsVersionChanged)
{
    program_.startWith({ home });
    ASSERT_TRUE(waitForTitle("57.3GB"));
    stop();
    provider_->setReport("secretOne", cottageReport);

    program_.start();
    EXPECT_TRUE(waitForTitle("57.3GB"));
    EXPECT_EQ(provider_->requestCount("secretOne"), 1);
    stop();

    std::ofstream(program_.cacheFolder / "secretTwo") << "another report";
    program_.setInfo("CFBundleShortVersionString", "99.0");
    program_.start();
    EXPECT_TRUE(waitForTitle("5.2GB"));
    EXPECT_EQ(provider_->requestCount("secretOne"), 2);
    EXPECT_FALSE(std::filesystem::exists(program_.cacheFolder / "secretTwo"));
}

TEST_F(ProgramTest, SwitchesTheConnectionFromTheMenu)
{
    program_.startWith({ home, cottage });
    ASSERT_TRUE(waitForTitle("57.3GB"));
    ASSERT_TRUE(waitForLines({ "Connection", "  * Home - secretOne", "  Cottage - secretTwo" }));
    ASSERT_TRUE(click(cottage));
    EXPECT_TRUE(waitForTitle("5.2GB"));
    EXPECT_TRUE(waitForLines({ "  Home - secretOne", "  * Cottage - secretTwo" }));

    ASSERT_TRUE(click(home));
    EXPECT_TRUE(waitForTitle("57.3GB"));
    EXPECT_EQ(provider_->requestCount("secretOne"), 1) << "what was loaded a moment ago is in the cache";
    ASSERT_TRUE(click(cottage));
    stop();
    program_.start();
    EXPECT_TRUE(waitForTitle("5.2GB")) << "the choice is kept";
}

TEST_F(ProgramTest, AnswersItsUserWhileTheProviderDoesNot)
{
    provider_->setReply("secretOne", { homeReport, demo::Manner::Never });
    program_.startWith({ home, cottage });
    ASSERT_TRUE(provider_->waitForRequests("secretOne", 1, bound));
    ASSERT_TRUE(waitForTitle("Please wait…"));
    EXPECT_TRUE(waitForLines({ "Downloaded: …" }));
    auto message = QDBusMessage::createMethodCall(QLatin1String(ProgramUnderTest::identifier),
        QStringLiteral("/StatusMenu"), QStringLiteral("com.canonical.dbusmenu"), QStringLiteral("GetLayout"));
    message.setArguments({ 0, -1, QStringList() });
    for (int i = 0; i < 20; ++i) {
        QElapsedTimer timer;
        timer.start();
        EXPECT_EQ(panel_.call(message).type(), QDBusMessage::ReplyMessage);
        EXPECT_LT(timer.elapsed(), 50 * slowness);
    }
    ASSERT_TRUE(click(cottage));
    EXPECT_TRUE(waitForTitle("5.2GB")) << "a load that waits holds up no other";
    ASSERT_TRUE(click("Quit"));
    EXPECT_EQ(program_.waitForExit(promptness), 0);
}

TEST_F(ProgramTest, ASecondStartShowsThePreferencesOfTheFirstAndTheDisplaysEndLosesNothing)
{
    QProcess screen;
    screen.start(QStringLiteral("Xvfb"), { "-displayfd", "1", "-nolisten", "tcp", "-screen", "0", "800x600x24" });
    ASSERT_TRUE(screen.waitForReadyRead()) << "is Xvfb installed?";
    qputenv("DISPLAY", ':' + screen.readLine().trimmed());
    qputenv("QT_QPA_PLATFORM", "xcb");
    for (auto const* const variable : { "DISPLAY", "QT_QPA_PLATFORM" })
        program_.setVariable(variable, qgetenv(variable).constData());
    auto const isShown = [] {
        QStringList const search { "search", "--onlyvisible", "--name", "^Usage Meter Preferences$" };
        return QProcess::execute(QStringLiteral("xdotool"), search) == 0;
    };
    program_.startWith({ home, cottage });
    ASSERT_TRUE(waitForTitle("57.3GB"));
    EXPECT_FALSE(isShown());
    ProgramUnderTest second;
    second.start();
    EXPECT_EQ(second.waitForExit(bound), 0) << second.output();
    EXPECT_TRUE(QTest::qWaitFor(isShown));
    EXPECT_EQ(provider_->requestCount("secretOne"), 1);

    program_.signal(SIGSTOP);
    second.start();
    EXPECT_EQ(second.waitForExit(bound), 1);
    EXPECT_EQ(second.output(), "usage-meter: it runs already, but does not answer\n");
    program_.signal(SIGCONT);

    provider_->setReply("secretTwo", { cottageReport, demo::Manner::Never });
    ASSERT_TRUE(click(cottage));
    ASSERT_TRUE(provider_->waitForRequests("secretTwo", 1, bound));
    screen.kill();
    EXPECT_EQ(program_.waitForExit(bound), 1);
    auto const stored = *platform::readPropertyList(*platform::readFile(program_.settingsFile));
    EXPECT_EQ(*platform::entry<std::string>(stored, settings::tarvoKeySelected), cottage);
    EXPECT_EQ(std::ranges::count(program_.output(), '\n'), 1) << program_.output();
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

TEST_F(ProgramTest, KeepsItsFilesToTheUserAndMovesDamagedOnesAside)
{
    auto const isStored = [this] { return std::filesystem::exists(program_.settingsFile); };
    auto const modeOf = [](std::filesystem::path const& path) { return std::filesystem::status(path).permissions(); };
    auto const formerMask = ::umask(0);
    program_.start();
    EXPECT_TRUE(QTest::qWaitFor(isStored));
    EXPECT_TRUE(waitForTitle("Please wait…"));
    EXPECT_EQ(modeOf(program_.settingsFile), std::filesystem::perms(0600));
    EXPECT_EQ(modeOf(program_.settingsFile.parent_path()), std::filesystem::perms(0700));
    stop();
    program_.startWith({ home });
    EXPECT_TRUE(waitForTitle("57.3GB"));
    EXPECT_EQ(modeOf(program_.cacheFolder / "secretOne"), std::filesystem::perms(0600));
    EXPECT_EQ(modeOf(program_.cacheFolder), std::filesystem::perms(0700));
    stop();
    ::umask(formerMask);

    std::ofstream(program_.settingsFile) << "<plist><dict><key>";
    program_.start();
    EXPECT_TRUE(waitForTitle("Please wait…"));
    EXPECT_EQ(platform::readFile(program_.settingsFile.string() + ".damaged"), "<plist><dict><key>");
    EXPECT_TRUE(QTest::qWaitFor(isStored));
}

}
