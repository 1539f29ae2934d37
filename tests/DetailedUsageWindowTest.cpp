// SPDX-License-Identifier: MIT
// Tests the detailed usage window with a real web engine and a real provider.
#include "demo/Provider.h"
#include "desktop/SystemColors.h"
#include "detail/DetailedUsageViewController.h"
#include "platform/AtomicFile.h"
#include "platform/Calendar.h"
#include "platform/Platform.h"
#include "platform/ProcessUrlLoader.h"
#include "platform/PropertyList.h"
#include "platform/ThreadQueues.h"
#include "tests/support/WindowsTest.h"
#include "windows/Palettes.h"
#include "windows/WebPluginId.h"

#include <csignal>
#include <fstream>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

constexpr auto pagePath = "/support/usage";

/// The processes that render pages, among a process and all that come from it.
std::vector<pid_t> renderers(pid_t process = ::getpid())
{
    auto const name = std::to_string(process);
    auto const arguments = platform::readFile("/proc/" + name + "/cmdline").value_or("");
    std::vector<pid_t> found(arguments.find("--type=renderer") != std::string::npos ? 1 : 0, process);
    std::ifstream children("/proc/" + name + "/task/" + name + "/children");
    for (pid_t child = 0; children >> child;)
        std::ranges::copy(renderers(child), std::back_inserter(found));
    return found;
}

struct DetailedUsageWindowTest : WindowsTest {
    /// Sets up a home whose user trusts the provider's certificate. The engine reads it once per process.
    static void SetUpTestSuite()
    {
        qputenv("HOME", home_.c_str());
        qputenv("NO_PROXY", "localhost");
        qputenv("SSLKEYLOGFILE", secrets_.c_str());
        std::filesystem::create_directories(home_ / ".pki/nssdb");
        // Not started with the toolkit, whose way of starting processes blinds the thread sanitizer.
        std::string const certutil = "certutil -d sql:" + (home_ / ".pki/nssdb").string();
        ASSERT_EQ(std::system((certutil + " -N --empty-password").c_str()), 0) << "is libnss3-tools installed?";
        auto const add = certutil + " -A -n provider -t C,, -i " + certificate_.authority.string();
        ASSERT_EQ(std::system(add.c_str()), 0);
    }

    DetailedUsageWindowTest()
    {
        // The engine cannot sandbox its pages as root.
        if (::geteuid() == 0)
            qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
        auto const folder = folder_.path() / "bundle";
        std::filesystem::copy(USAGE_METER_BUNDLE, folder, std::filesystem::copy_options::recursive);
        auto info = *platform::readPropertyList(*platform::readFile(folder / "Info.plist"));
        info.insert_or_assign("ProviderHost", provider_->host());
        platform::writeFileAtomically(folder / "Info.plist", platform::writePropertyList(info));
        bundle_ = *platform::Bundle::open(folder, { "en" });
        windows_ = std::make_unique<MainWindows>(outlets_, bundle_, loop_, USAGE_METER_WEB);
    }

    /// Never sleeps past an event, since the engine does its work in many small steps.
    static bool waitFor(std::function<bool()> const& condition)
    {
        QDeadlineTimer const deadline(20s);
        QTimer timer;
        timer.start(1);
        while (!condition() && !deadline.hasExpired())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return condition();
    }

    void open() { controller_.doShowUsageWindow(); }

    /// Opens the window on a page that the test provides.
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

    /// Whether this is true in the page.
    bool finds(std::string const& condition)
    {
        std::optional<bool> found;
        detailed().usageWebView.evaluate(condition, [&found](bool isTrue) { found = isTrue; });
        return waitFor([&found] { return found.has_value(); }) && *found;
    }

    DetailedUsageLayout& detailed() { return outlets_.detailedUsage; }
    std::size_t pageCount() const { return provider_->pageRequests(pagePath).size(); }

    inline static TemporaryFolder const shared_;
    inline static std::filesystem::path const home_ = shared_.path() / "home";
    /// A place where nobody may write a connection's secrets.
    inline static std::filesystem::path const secrets_ = shared_.path() / "secrets";
    inline static demo::CertificateFiles const certificate_ = *demo::makeCertificate(shared_.path() / "certificate");
    std::unique_ptr<demo::Provider> provider_ = demo::Provider::start(certificate_);
    platform::ThreadQueues queues_;
    platform::ProcessUrlLoader urlLoader_ { {} };
    DesktopWorkspace workspace_;
    platform::Platform platform_ { loop_, queues_, defaults_, urlLoader_, bundle_, workspace_, application_, nullptr,
        nullptr, folder_.path(), "en_US", "en_US", false, systemColors };
    DetailedUsageViewController controller_ { platform_, outlets_.detailedUsage };
};

}

TEST_F(DetailedUsageWindowTest, TheProvidersPageIsCutDownToItsUsage)
{
    open();
    ASSERT_TRUE(waitForPage());
    auto const ground = [](char const* color) {
        return "getComputedStyle(document.body).backgroundColor === '" + std::string(color) + "'";
    };
    std::string const colors
        = "[...document.getElementsByTagName('tr')].map(row => getComputedStyle(row).backgroundColor)";
    std::vector<std::string> const truths { "document.body.children.length === 1",
        "document.body.firstElementChild.className === 'portal-login-section'",
        "document.body.innerText.split('" + bundle_.localizedString("DETAILED_USAGE_WARNING") + "').length === 2",
        "!document.querySelector('script, footer, h2, #headerMountPoint')",
        "document.querySelectorAll('span.highlight').length === 1", ground("rgb(243, 243, 243)"),
        "new Set(" + colors + ".slice(0, -1)).size === 1", colors + ".at(-2) === 'rgb(255, 255, 255)'",
        colors + ".at(-1) === 'rgb(212, 255, 209)'", "getComputedStyle(document.body).userSelect === 'none'",
        "!document.body.dispatchEvent(new Event('selectstart', { cancelable: true }))",
        "!document.body.dispatchEvent(new Event('dragstart', { cancelable: true }))" };
    for (auto const& truth : truths)
        EXPECT_TRUE(finds(truth)) << truth;
    detailed().window.effectiveAppearance.set(platform::Appearance::Dark);
    EXPECT_TRUE(finds(ground("rgb(43, 45, 48)")));
    EXPECT_FALSE(finds(colors + ".at(-2) === 'rgb(255, 255, 255)'"));
    EXPECT_EQ(pageCount(), 1U);
    EXPECT_FALSE(std::filesystem::exists(secrets_));

    // The month before, as an assistive program picks it.
    auto& picker = widgetOf<QComboBox>("usageMonthPicker");
    EXPECT_EQ(picker.count(), 13);
    picker.setCurrentIndex(1);
    EXPECT_TRUE(waitFor([this] { return detailed().usageWebView.hidden.get(); }));
    EXPECT_EQ(widgetOf<QProgressBar>("progressIndicator").maximum(), 0) << "it is on the move";
    ASSERT_TRUE(waitForPage());
    EXPECT_EQ(pageCount(), 2U);
    EXPECT_TRUE(picker.hasFocus()) << "for the next pick by key";
    EXPECT_TRUE(finds("!document.querySelector('span.highlight') && new Set(" + colors + ").size === 1"));
}

TEST_F(DetailedUsageWindowTest, FullScreenIsLeftByKeyOrButton)
{
    open();
    ASSERT_TRUE(waitForPage());
    auto& window = widgetOf<QDialog>("detailedUsageWindow");
    auto& exit = widgetOf<QAbstractButton>("exitFullScreen");
    for (bool const isByKey : { true, false }) {
        EXPECT_FALSE(window.isFullScreen() || exit.isVisible());
        QTest::keyClick(&window, Qt::Key_F11);
        EXPECT_TRUE(window.isFullScreen() && exit.isVisible());
        if (isByKey)
            QTest::keyClick(&window, Qt::Key_Escape);
        else
            exit.click();
    }
    EXPECT_TRUE(window.isVisible() && !window.isFullScreen());
}

TEST_F(DetailedUsageWindowTest, APageIsShownAsFarAsItGoes)
{
    using enum demo::Manner;
    std::string const table = "<table><tr><td>1</td></tr></table>";
    std::vector<std::pair<demo::Reply, char const*>> const cases {
        { { table, CutOff }, "LOAD_ERROR_ANSWER" },
        { { .status = 302, .headers = { { "Location", pagePath } } }, "LOAD_ERROR_ANSWER" },
        { { .status = 302, .headers = { { "Location", "https://www.localhost/" } } }, "LOAD_ERROR_STOPPED" },
        { { .status = 204 }, "LOAD_ERROR_STOPPED" },
        { { table }, "" },
        { { table, AtOnce, 503 }, "" },
        { { table, AtOnce, 401, {}, { { "WWW-Authenticate", "Basic" } } }, "" },
        { { table + "<script>location = 'https://www.localhost/'</script>" }, "" },
        { { "<h2>Usage</h2><iframe src='http://localhost/'></iframe>" + table }, "" },
    };
    open();
    ASSERT_TRUE(waitForPage());
    int monthsBack = 1;
    for (auto const& [page, error] : cases) {
        provider_->setPage(pagePath, page);
        detailed().usageMonthPicker.dateValue.set(platform::addingMonths(loop_.now(), -monthsBack++));
        controller_.doReload();
        if (*error) {
            EXPECT_EQ(waitForAlert(),
                "The daily usage cannot be shown. Your provider’s page did not load. "
                    + bundle_.localizedString(error));
            EXPECT_TRUE(detailed().usageWebView.hidden.get());
        } else {
            EXPECT_TRUE(waitForPage());
            EXPECT_TRUE(finds("document.querySelectorAll('table').length === 1"));
            detailed().usageWebView.hidden.set(true);
        }
    }

    // Nothing comes of an untrusted certificate.
    int const port = provider_->port();
    provider_.reset();
    provider_ = demo::Provider::start(*demo::makeCertificate(folder_.path() / "other"), port);
    controller_.doReload();
    EXPECT_TRUE(waitForAlert().ends_with(bundle_.localizedString("LOAD_ERROR_CERTIFICATE")));
    EXPECT_EQ(pageCount(), 0U);
}

TEST_F(DetailedUsageWindowTest, APageThatTriesToLeaveStaysAsItIs)
{
    auto const elsewhere = demo::Provider::start(certificate_);
    std::string const other = "https://www." + elsewhere->host() + "/away";
    provider_->setPage("/file", { .body = "x", .headers = { { "Content-Disposition", "attachment; filename=x" } } });
    openOn({ "<h2>Usage</h2><form id='form' method='post' action='" + other + "'><input name='a'></form>"
        + "<i class='usage-message-failure'>All Errors are gone.</i>"
        + "<a id='blank' target='_blank' href='/file'>x</a><a id='link' href='" + other + "'>x</a>" });
    ASSERT_TRUE(waitForPage());
    auto const windows = QGuiApplication::topLevelWindows().size();
    std::vector<std::string> const attempts { "window.open('" + other + "')", "window.open('/file')",
        "document.getElementById('form').submit()", "document.getElementById('blank').click()",
        "document.getElementById('link').click()", "location = '" + other + "'", "location = 'file:///etc/passwd'",
        "location = 'data:text/html,https://" + provider_->host() + "/'", "location.replace('" + other + "')",
        "location = 'mailto:someone@example.org'", "alert('?')",
        "document.getElementById('link').requestFullscreen()" };
    for (auto const& attempt : attempts) {
        detailed().usageWebView.run(attempt);
        // An answer from the page that is still the same one, and shown.
        EXPECT_TRUE(finds("document.getElementById('link') !== null")) << attempt;
        EXPECT_FALSE(detailed().usageWebView.hidden.get()) << attempt;
    }
    EXPECT_EQ(alertText(), "");
    EXPECT_EQ(QGuiApplication::topLevelWindows().size(), windows);
    EXPECT_TRUE(elsewhere->pageRequests("/away").empty());

    // A download in place of the page must yield neither a page nor a file.
    detailed().usageWebView.run("location = '/file'");
    EXPECT_TRUE(waitForAlert().ends_with(bundle_.localizedString("LOAD_ERROR_STOPPED")));
    for (auto const& entry : std::filesystem::recursive_directory_iterator(home_))
        EXPECT_NE(entry.path().filename(), "x");
}

TEST_F(DetailedUsageWindowTest, ClosingEndsThePageWhateverItDoes)
{
    openOn({ "<h2>Usage</h2><script>while (true);</script>" });
    ASSERT_TRUE(waitFor([] { return renderers().size() == 1; }));
    widgetOf<QDialog>("detailedUsageWindow").close();
    EXPECT_FALSE(detailed().window.visible.get());
    EXPECT_TRUE(waitFor([] { return renderers().empty(); }));

    openOn({ "<h2>Usage</h2><a class='usage-message-failure'>no error</a>" });
    EXPECT_TRUE(waitForAlert().starts_with(bundle_.localizedString("USAGE_ERROR_TITLE")));
    EXPECT_EQ(renderers().size(), 1U);
    detailed().window.userAnswered(platform::Alert::firstButtonReturn);

    // If a page's process is killed, the user is asked too.
    ::kill(renderers().at(0), SIGKILL);
    EXPECT_TRUE(waitForAlert().ends_with(bundle_.localizedString("LOAD_ERROR_PAGE_LOST")));
}

TEST_F(DetailedUsageWindowTest, WithoutTheWholeEngineOfThisBuildTheWindowSaysSo)
{
    auto const expectError = [this](char const* error) {
        open();
        EXPECT_TRUE(waitForAlert().ends_with(bundle_.localizedString(error))) << alertText();
        detailed().window.userAnswered(platform::Alert::firstButtonReturn + 1);
        EXPECT_FALSE(detailed().window.visible.get());
    };
    for (char const* const part : { "QTWEBENGINEPROCESS_PATH", "QTWEBENGINE_RESOURCES_PATH" }) {
        qputenv(part, "/nowhere");
        expectError("LOAD_ERROR_ENGINE_MISSING");
        qunsetenv(part);
    }
    windows_ = std::make_unique<MainWindows>(outlets_, bundle_, loop_, folder_.path());
    expectError("LOAD_ERROR_ENGINE_MISSING");

    // After an upgrade, a running program finds such a plugin.
    auto plugin = *platform::readFile(std::filesystem::path(USAGE_METER_WEB) / "usage-meter-web.so");
    std::string const id = USAGE_METER_WEB_PLUGIN_ID;
    for (auto at = plugin.find(id); at != std::string::npos; at = plugin.find(id, at + 1))
        plugin[at + id.size() - 1] ^= 1;
    std::ofstream(folder_.path() / "usage-meter-web.so") << plugin;
    expectError("LOAD_ERROR_ENGINE_OF_ANOTHER_BUILD");

    // If the engine cannot sandbox its pages, it is not even started.
    qunsetenv("QTWEBENGINE_DISABLE_SANDBOX");
    if (::geteuid() == 0)
        expectError("LOAD_ERROR_ENGINE_NOT_ISOLATED");
}
