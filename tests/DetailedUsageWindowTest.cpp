// SPDX-License-Identifier: MIT
// The detailed usage window with a real web engine, on a real provider.
#include "app/Outlets.h"
#include "demo/Provider.h"
#include "desktop/ColorScheme.h"
#include "desktop/DesktopRunLoop.h"
#include "desktop/DesktopServices.h"
#include "desktop/MainWindows.h"
#include "detail/DetailedUsageViewController.h"
#include "platform/AtomicFile.h"
#include "platform/Bundle.h"
#include "platform/Calendar.h"
#include "platform/Platform.h"
#include "platform/ProcessUrlLoader.h"
#include "platform/PropertyList.h"
#include "platform/ThreadQueues.h"
#include "platform/UserDefaults.h"
#include "tests/support/TemporaryFolder.h"

#include <QAbstractButton>
#include <QProcess>
#include <QTest>
#include <QtWidgets>

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

constexpr auto bound = 20s;
constexpr auto pagePath = "/support/usage";

using Texts = std::vector<std::string>;

/// A home whose user trusts the provider's certificate, in the way that the engine asks for.
class Home {
public:
    explicit Home(demo::CertificateFiles const& certificate)
    {
        qputenv("HOME", folder_.path().c_str());
        qputenv("NO_PROXY", "localhost");
        // The engine isolates its pages, but never as root.
        if (::geteuid() == 0)
            qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
        auto const database = folder_.path() / ".pki/nssdb";
        std::filesystem::create_directories(database);
        auto const name = QString::fromStdString("sql:" + database.string());
        QProcess::execute("certutil", { "-N", "-d", name, "--empty-password" });
        QProcess::execute("certutil",
            { "-A", "-d", name, "-n", "provider", "-t", "C,,", "-i",
                QString::fromStdString(certificate.authority.string()) });
    }

    std::filesystem::path const& path() const { return folder_.path(); }

private:
    TemporaryFolder folder_;
};

platform::Bundle bundleFor(std::string const& host, std::filesystem::path const& folder)
{
    std::filesystem::copy(USAGE_METER_BUNDLE, folder, std::filesystem::copy_options::recursive);
    auto info = *platform::readPropertyList(*platform::readFile(folder / "Info.plist"));
    info.insert_or_assign("ProviderHost", host);
    platform::writeFileAtomically(folder / "Info.plist", platform::writePropertyList(info));
    return *platform::Bundle::open(folder, { "en" });
}

/// A line of /proc/PID/status: the process that started this one.
int parentOf(std::filesystem::path const& process)
{
    std::ifstream file(process / "status");
    for (std::string word; file >> word;) {
        int parent = 0;
        if (word == "PPid:" && file >> parent)
            return parent;
    }
    return 0;
}

/// The processes of this program that show pages; the engine starts them through another process.
std::vector<pid_t> renderers()
{
    std::vector<pid_t> found;
    for (auto const& process : std::filesystem::directory_iterator("/proc")) {
        std::ifstream file(process.path() / "cmdline");
        std::string const arguments { std::istreambuf_iterator<char>(file), {} };
        if (arguments.find("--type=renderer") == std::string::npos)
            continue;
        if (parentOf("/proc/" + std::to_string(parentOf(process))) == ::getpid())
            found.push_back(std::stoi(process.path().filename()));
    }
    return found;
}

class DetailedUsageWindowTest : public testing::Test {
protected:
    /// The event loop runs freely meanwhile: the engine does its work there, in many small pieces.
    template <typename Condition> static bool waitFor(Condition condition)
    {
        QEventLoop eventLoop;
        QDeadlineTimer const deadline(bound);
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [&] {
            if (condition() || deadline.hasExpired())
                eventLoop.quit();
        });
        timer.start(1);
        eventLoop.exec();
        return condition();
    }

    void open() { controller_.doShowUsageWindow(); }

    /// Opens the window on a page of the test's own.
    void openOn(demo::Reply page)
    {
        provider_->setPage(pagePath, std::move(page));
        open();
    }

    bool waitForPage()
    {
        return waitFor([this] { return !detailed().usageWebView.hidden.get(); });
    }

    std::string alertText()
    {
        auto const* const alert
            = std::get_if<std::shared_ptr<platform::Alert const>>(&detailed().window.attachedSheet.get());
        return alert ? (*alert)->messageText + " " + (*alert)->informativeText : std::string();
    }

    std::string waitForAlert()
    {
        return waitFor([this] { return !alertText().empty(); }) ? alertText() : "no alert";
    }

    /// What a script finds in the page.
    std::string read(std::string const& script)
    {
        std::optional<std::string> found;
        detailed().usageWebView.evaluate(script, [&found](std::string const& result) { found = result; });
        return waitFor([&found] { return found.has_value(); }) ? *found : "no answer";
    }

    std::string ground(std::string const& element) { return read("getComputedStyle(" + element + ").backgroundColor"); }

    template <typename Widget> static Widget& widget(char const* outlet)
    {
        for (auto* const candidate : QApplication::allWidgets()) {
            if (candidate->objectName() == QLatin1String(outlet))
                return dynamic_cast<Widget&>(*candidate);
        }
        throw std::logic_error(outlet);
    }

    DetailedUsageLayout& detailed() { return outlets_.detailedUsage; }
    std::size_t pageCount() const { return provider_->pageRequests(pagePath).size(); }

    TemporaryFolder folder_;
    demo::CertificateFiles certificate_ = *demo::makeCertificate(folder_.path() / "certificate");
    std::unique_ptr<demo::Provider> provider_ = demo::Provider::start(certificate_);
    Home home_ { certificate_ };
    platform::Bundle bundle_ = bundleFor(provider_->host(), folder_.path() / "bundle");
    DesktopRunLoop loop_;
    platform::ThreadQueues queues_;
    platform::UserDefaults defaults_ { folder_.path() / "preferences.plist", loop_ };
    platform::ProcessUrlLoader urlLoader_ { {} };
    DesktopWorkspace workspace_;
    DesktopApplication application_;
    platform::Platform platform_ { loop_, queues_, defaults_, urlLoader_, bundle_, workspace_, application_, nullptr,
        folder_.path(), "en_US", "en_US", false, systemColors };
    Outlets outlets_;
    DetailedUsageViewController controller_ { platform_, outlets_.detailedUsage };
    std::optional<MainWindows> windows_ { std::in_place, outlets_, bundle_, loop_, USAGE_METER_WEB };
};

}

TEST_F(DetailedUsageWindowTest, TheProvidersPageIsCutDownAndColouredAndTodayStandsOut)
{
    open();
    ASSERT_TRUE(waitForPage());
    EXPECT_EQ(read("document.body.children.length + ' ' + document.body.firstElementChild.className"),
        "1 portal-login-section");
    auto const warning = bundle_.localizedString("DETAILED_USAGE_WARNING");
    EXPECT_EQ(read("document.body.innerText.split('" + warning + "').length - 1"), "1");
    EXPECT_EQ(read("document.querySelectorAll('script, footer, h2, #headerMountPoint').length"), "0");
    EXPECT_EQ(read("document.querySelectorAll('span.highlight').length"), "1");
    EXPECT_EQ(ground("document.body"), "rgb(243, 243, 243)");
    auto const grounds = "[...document.getElementsByTagName('tr')].map(row => getComputedStyle(row).backgroundColor)";
    EXPECT_EQ(read(std::string("new Set(") + grounds + ".slice(0, -1)).size"), "1");
    EXPECT_EQ(read(std::string(grounds) + ".at(-2)"), "rgb(255, 255, 255)");
    EXPECT_EQ(read(std::string(grounds) + ".at(-1)"), "rgb(212, 255, 209)");
    EXPECT_EQ(read("getComputedStyle(document.body).userSelect"), "none");
    for (auto const* const event : { "selectstart", "dragstart" })
        EXPECT_EQ(read(std::string("document.body.dispatchEvent(new Event('") + event + "', { cancelable: true }))"),
            "false");

    detailed().window.effectiveAppearance.set(platform::Appearance::Dark);
    EXPECT_EQ(ground("document.body"), "rgb(43, 45, 48)");
    EXPECT_NE(read(std::string(grounds) + ".at(-2)"), "rgb(255, 255, 255)");
    EXPECT_EQ(pageCount(), 1U);

    // The month before, as the user picks it.
    auto& picker = widget<QComboBox>("usageMonthPicker");
    EXPECT_EQ(picker.count(), 13);
    EXPECT_TRUE(picker.hasFocus());
    QTest::keyClick(&picker, Qt::Key_Down);
    ASSERT_TRUE(waitFor([this] { return pageCount() == 2; }));
    ASSERT_TRUE(waitForPage());
    EXPECT_EQ(read("document.querySelectorAll('span.highlight').length"), "0");
    EXPECT_EQ(read(std::string("new Set(") + grounds + ").size"), "1");
    EXPECT_TRUE(picker.hasFocus());
}

TEST_F(DetailedUsageWindowTest, WhatCannotBeShownAsksWhetherToTryAgainAndTheRestIsShownAsFarAsItGoes)
{
    using Case = std::pair<demo::Reply, char const*>;
    std::string const table = "<table><tr><td>1</td></tr></table>";
    demo::Reply const elsewhere { .status = 302, .headers = { { "Location", "https://www.localhost/" } } };
    demo::Reply const inCircles { .status = 302, .headers = { { "Location", pagePath } } };
    open();
    ASSERT_TRUE(waitForPage());
    int monthsBack = 1;
    for (auto const& [page, outcome] :
        { Case { { table, demo::Manner::CutOff }, "LOAD_ERROR_ANSWER" }, Case { elsewhere, "LOAD_ERROR_STOPPED" },
            Case { inCircles, "LOAD_ERROR_ANSWER" }, Case { { .status = 204 }, "LOAD_ERROR_STOPPED" },
            Case { { table }, "" }, Case { { table, demo::Manner::AtOnce, 503 }, "" },
            Case { { table, demo::Manner::AtOnce, 401, {}, { { "WWW-Authenticate", "Basic" } } }, "" },
            Case { { table + "<script>location = 'https://www.localhost/'</script>" }, "" },
            Case { { "<h2>Usage</h2><iframe src='http://localhost/'></iframe>" + table }, "" } }) {
        provider_->setPage(pagePath, page);
        detailed().usageMonthPicker.dateValue.set(platform::addingMonths(loop_.now(), -monthsBack++));
        controller_.doReload();
        if (*outcome) {
            EXPECT_EQ(waitForAlert(),
                "The daily usage cannot be shown. The page of your provider did not load. "
                    + bundle_.localizedString(outcome));
            EXPECT_TRUE(detailed().usageWebView.hidden.get());
        } else {
            EXPECT_TRUE(waitForPage());
            EXPECT_EQ(read("document.querySelectorAll('table').length"), "1");
            detailed().usageWebView.hidden.set(true);
        }
    }
}

TEST_F(DetailedUsageWindowTest, AnUntrustedCertificateShowsNothing)
{
    auto const other = demo::Provider::start(*demo::makeCertificate(folder_.path() / "other"));
    auto const bundle = bundleFor(other->host(), folder_.path() / "other-bundle");
    platform::Platform platform { loop_, queues_, defaults_, urlLoader_, bundle, workspace_, application_, nullptr,
        folder_.path() };
    DetailedUsageViewController controller(platform, outlets_.detailedUsage);
    controller.doShowUsageWindow();
    EXPECT_TRUE(waitForAlert().ends_with(bundle_.localizedString("LOAD_ERROR_CERTIFICATE")));
    EXPECT_TRUE(other->pageRequests(pagePath).empty());
}

TEST_F(DetailedUsageWindowTest, APageThatTriesToLeaveStaysAndOpensAndWritesNothing)
{
    auto const elsewhere = demo::Provider::start(certificate_);
    std::string const other = "https://www." + elsewhere->host() + "/away";
    provider_->setPage("/file", { .body = "x", .headers = { { "Content-Disposition", "attachment; filename=x" } } });
    openOn({ "<h2>Usage</h2><form id='form' method='post' action='" + other + "'><input name='a'></form>"
        + "<i class='usage-message-failure'>All Errors are gone.</i>"
        + "<a id='blank' target='_blank' href='/file'>x</a><a id='link' href='" + other + "'>x</a>" });
    ASSERT_TRUE(waitForPage());
    auto const windows = QGuiApplication::topLevelWindows().size();
    Texts const attempts { "window.open('" + other + "')", "window.open('/file')",
        "document.getElementById('form').submit()", "document.getElementById('blank').click()",
        "document.getElementById('link').click()", "location = '" + other + "'", "location = 'file:///etc/passwd'",
        "location = 'data:text/html,https://" + provider_->host() + "/'", "location.replace('" + other + "')",
        "location = 'mailto:someone@example.org'", "alert('?')",
        "document.getElementById('link').requestFullscreen()" };
    for (auto const& attempt : attempts) {
        read(attempt);
        // An answer from the page that is still the same one, and shown.
        EXPECT_EQ(read("document.getElementById('link').id"), "link") << attempt;
        EXPECT_FALSE(detailed().usageWebView.hidden.get()) << attempt;
    }
    EXPECT_EQ(alertText(), "");
    EXPECT_EQ(QGuiApplication::topLevelWindows().size(), windows);
    EXPECT_TRUE(elsewhere->pageRequests("/away").empty());

    // A download in place of the page is no page, and no file either.
    read("location = '/file'");
    EXPECT_TRUE(waitForAlert().ends_with(bundle_.localizedString("LOAD_ERROR_STOPPED")));
    for (auto const& entry : std::filesystem::recursive_directory_iterator(home_.path()))
        EXPECT_NE(entry.path().filename(), "x");
}

TEST_F(DetailedUsageWindowTest, ClosingEndsThePageWhateverItDoesAndTheNextShowingBeginsAnew)
{
    openOn({ "<h2>Usage</h2><script>while (true);</script>" });
    ASSERT_TRUE(waitFor([] { return renderers().size() == 1; }));
    widget<QDialog>("detailedUsageWindow").close();
    EXPECT_FALSE(detailed().window.visible.get());
    EXPECT_TRUE(waitFor([] { return renderers().empty(); }));

    openOn({ "<h2>Usage</h2><a class='usage-message-failure'>no error</a>" });
    EXPECT_TRUE(waitForAlert().starts_with(bundle_.localizedString("USAGE_ERROR_TITLE")));
    EXPECT_EQ(renderers().size(), 1U);
    detailed().window.userAnswered(platform::Alert::firstButtonReturn);

    // A page whose process is killed asks as well.
    ::kill(renderers().at(0), SIGKILL);
    EXPECT_TRUE(waitForAlert().ends_with(bundle_.localizedString("LOAD_ERROR_PAGE_LOST")));
}

TEST_F(DetailedUsageWindowTest, FullScreenIsEnteredAndLeftByKeyAndLeftByItsButton)
{
    open();
    ASSERT_TRUE(waitForPage());
    auto& window = widget<QDialog>("detailedUsageWindow");
    auto& exit = widget<QAbstractButton>("exitFullScreen");
    EXPECT_FALSE(exit.isVisible());
    for (auto const& leave : { std::function<void()>([&] { QTest::keyClick(&window, Qt::Key_Escape); }),
             std::function<void()>([&] { exit.click(); }) }) {
        QTest::keyClick(&window, Qt::Key_F11);
        EXPECT_TRUE(window.isFullScreen() && exit.isVisible());
        leave();
        EXPECT_FALSE(window.isFullScreen() || exit.isVisible());
    }
    EXPECT_TRUE(window.isVisible());
}

TEST_F(DetailedUsageWindowTest, WithoutTheEngineTheWindowSaysSoAndNothingElseIsHarmed)
{
    windows_.emplace(outlets_, bundle_, loop_, folder_.path());
    open();
    EXPECT_TRUE(waitForAlert().ends_with(bundle_.localizedString("LOAD_ERROR_ENGINE_MISSING")));
    detailed().window.userAnswered(platform::Alert::firstButtonReturn + 1);
    EXPECT_FALSE(detailed().window.visible.get());
    // Where it could not isolate its pages it is not even tried.
    qunsetenv("QTWEBENGINE_DISABLE_SANDBOX");
    if (::geteuid() == 0) {
        open();
        EXPECT_TRUE(waitForAlert().ends_with(bundle_.localizedString("LOAD_ERROR_ENGINE_NOT_ISOLATED")));
    }
}
