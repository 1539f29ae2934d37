// SPDX-License-Identifier: MIT
#include "app/AppDelegate.h"
#include "app/Outlets.h"
#include "desktop/ActivationToken.h"
#include "desktop/AutostartEntry.h"
#include "desktop/ColorScheme.h"
#include "desktop/DesktopRunLoop.h"
#include "desktop/DesktopServices.h"
#include "desktop/ExitSignals.h"
#include "desktop/FreedesktopNotifications.h"
#include "desktop/SingleInstance.h"
#include "desktop/StatusArea.h"
#include "desktop/SystemColors.h"
#include "platform/Bundle.h"
#include "platform/Locale.h"
#include "platform/Platform.h"
#include "platform/ProcessUrlLoader.h"
#include "platform/ThreadQueues.h"
#include "platform/UserDefaults.h"
#include "ui/MainLayout.h"
#include "windows/MainWindows.h"
#include "windows/Palettes.h"
#include "windows/Text.h"

#include <QApplication>
#include <QDir>
#include <QIcon>
#include <QLibraryInfo>
#include <QLocale>
#include <QSessionManager>
#include <QTranslator>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;

// What has not ended by then is left to the end of the process.
constexpr platform::Seconds patienceAtExit = 50ms;
// What XDG calls the folder of entries that start at login.
constexpr char const* autostart = "autostart";

// What is written to a stream that is closed or broken must go nowhere: neither into a file or socket that has taken
// its number, nor into a signal that ends the program.
void openStandardStreams()
{
    std::signal(SIGPIPE, SIG_IGN);
    int descriptor = -1;
    do
        descriptor = open("/dev/null", O_RDWR);
    while (descriptor >= STDIN_FILENO && descriptor <= STDERR_FILENO);
    close(descriptor);
}

// A program that ignores the end of its children leaves that to those that it starts, and a helper's outcome would be
// lost.
void heedChildren() { std::signal(SIGCHLD, SIG_DFL); }

void printError(QString const& message)
{
    std::fprintf(stderr, "usage-meter: %s\n", qPrintable(message.section(QLatin1Char('\n'), 0, 0).trimmed()));
}

bool isError(QtMsgType type) { return type != QtDebugMsg && type != QtInfoMsg; }

// A desktop that cannot be reached makes Qt warn, advise to reinstall and abort(); a user is better served by the
// warning alone and a plain failure.
void reportFailedStart(QtMsgType type, QMessageLogContext const& /*context*/, QString const& message)
{
    static QString reason;
    if (type == QtFatalMsg) {
        printError(reason.isEmpty() ? message : reason);
        _exit(EXIT_FAILURE);
    }
    if (isError(type))
        reason = message;
}

// The toolkit warns of what Wayland does not have and of compositors that lack an extension; neither is a failure.
bool isWaylandsLimit(QtMsgType type, QMessageLogContext const& context)
{
    return type == QtWarningMsg && QLatin1String(context.category).startsWith(QLatin1String("qt.qpa.wayland"));
}

void reportError(QtMsgType type, QMessageLogContext const& context, QString const& message)
{
    if (isError(type) && !isWaylandsLimit(type, context))
        printError(message);
    if (type == QtFatalMsg)
        _exit(EXIT_FAILURE);
}

// Whose last change must not be lost while the event loop runs.
platform::UserDefaults* settingsInUse = nullptr;

// The toolkit calls exit() by itself when the display goes. Nothing of ours is torn down then, for its threads are at
// work.
void endAbruptly(int status, void* /*unused*/)
{
    if (!settingsInUse)
        return;
    settingsInUse->flush();
    _exit(status);
}

std::filesystem::path userFolder(char const* variable, char const* inHome)
{
    // The XDG rules: a relative path counts as none.
    std::filesystem::path const folder = qEnvironmentVariable(variable).toStdString();
    return folder.is_absolute() ? folder : std::filesystem::path(QDir::homePath().toStdString()) / inHome;
}

std::vector<std::filesystem::path> systemAutostartFolders()
{
    auto const folders = qEnvironmentVariable("XDG_CONFIG_DIRS", QStringLiteral("/etc/xdg"));
    std::vector<std::filesystem::path> autostartFolders;
    for (auto const& folder : folders.split(QLatin1Char(':'), Qt::SkipEmptyParts))
        autostartFolders.push_back(std::filesystem::path(folder.toStdString()) / autostart);
    return autostartFolders;
}

// A place relative to the program's own folder, the same in the build folder and in an installation.
std::filesystem::path fromProgram(char const* place)
{
    auto const folder = std::filesystem::path(QCoreApplication::applicationDirPath().toStdString());
    return (folder / place).lexically_normal();
}

std::filesystem::path additionalAuthority(platform::Bundle const& bundle)
{
    auto const file = bundle.infoText("ProviderCertificateAuthority");
    return file.empty() ? std::filesystem::path() : bundle.folder() / file;
}

// Installed beside the bundle.
StatusNotifierItem::ThemeIcon themeIcon(platform::Bundle const& bundle)
{
    auto const themes = (bundle.folder().parent_path() / "icons").string();
    return { toQt(bundle.infoText("CFBundleIconFile")), toQt(themes) };
}

int run(platform::Bundle const& bundle, SingleInstance& instance)
{
    auto const bus = QDBusConnection::sessionBus();
    auto const activationToken = takeActivationToken();
    DesktopRunLoop runLoop;
    platform::ThreadQueues queues;
    platform::ProcessUrlLoader urlLoader(
        fromProgram(USAGE_METER_PARTS "/usage-meter-fetch"), additionalAuthority(bundle));
    // The loader has its copy of the environment by now.
    keepActivationToken(activationToken);
    auto const settingsFile = userFolder("XDG_CONFIG_HOME", ".config") / bundle.identifier() / "preferences.plist";
    platform::UserDefaults userDefaults(settingsFile, runLoop);
    auto const notifications = FreedesktopNotifications::connectTo(
        bus, { toQt(bundle.infoText("CFBundleIconFile")), toQt(bundle.localizedString("NOTIFICATION_ACTION")) });
    AutostartEntry loginItem({ .identifier = bundle.identifier(),
                                 .displayName = bundle.infoText("CFBundleDisplayName"),
                                 .file = QCoreApplication::applicationFilePath().toStdString() },
        userFolder("XDG_CONFIG_HOME", ".config") / autostart, systemAutostartFolders());
    DesktopWorkspace workspace;
    DesktopApplication desktopApplication;
    platform::Platform platform {
        .runLoop = runLoop,
        .backgroundQueues = queues,
        .userDefaults = userDefaults,
        .urlLoader = urlLoader,
        .bundle = bundle,
        .workspace = workspace,
        .application = desktopApplication,
        .notificationCenter = notifications.get(),
        .loginItem = &loginItem,
        .cachesFolder = userFolder("XDG_CACHE_HOME", ".cache"),
        .numberLocale = platform::userLocale("LC_NUMERIC"),
        .dateLocale = platform::userLocale("LC_TIME"),
        .systemColors = systemColors,
    };

    Outlets outlets;
    MainLayout layout(outlets, bundle, userDefaults, platform.numberLocale);
    AppDelegate controller(platform, outlets);
    layout.wire(controller);
    MainWindows windows(outlets, bundle, runLoop, fromProgram(USAGE_METER_PARTS));
    instance.whenActivated([&controller] { controller.showPreferences(); });
    StatusArea const statusArea(controller.usageStatusItem(), themeIcon(bundle),
        { .noStatusArea = [&windows, &desktopApplication] { windows.showUsageWindowWithMenu(desktopApplication); },
            .placed = [&windows] { windows.leaveMenuToStatusArea(); },
            .activationToken = keepActivationToken },
        bus);
    ColorScheme const colorScheme(bus, [&outlets](platform::Appearance appearance) {
        applyAppearance(appearance);
        for (auto* const window :
            { &outlets.window, &outlets.addKeyWindow, &outlets.monitorWindow, &outlets.detailedUsage.window })
            window->effectiveAppearance.set(appearance);
    });
    // A refresh needs much memory for a moment, and the next one is hours away.
    auto const trimming = controller.usageStatusItem().title.observeChanges(
        [&runLoop](std::string const&) { runLoop.performAfter(1s, [] { malloc_trim(0); }); });
    ExitSignals const exitSignals;
    controller.applicationDidFinishLaunching();

    settingsInUse = &userDefaults;
    on_exit(endAbruptly, nullptr);
    int const status = QApplication::exec();
    settingsInUse = nullptr;
    userDefaults.flush();
    urlLoader.cancel();
    if (!queues.waitUntilIdle(patienceAtExit))
        _exit(status);
    return status;
}

}

int main(int argc, char** argv)
{
    ExitSignals::endProcess();
    openStandardStreams();
    heedChildren();
    qInstallMessageHandler(reportFailedStart);
    QApplication const application(argc, argv);
    qInstallMessageHandler(reportError);
    QApplication::setQuitOnLastWindowClosed(false);
    // Where our icons are, should the desktop's own theme not be installed.
    QIcon::setFallbackThemeName(QStringLiteral("hicolor"));
    applyAppearance(platform::Appearance::Light);
    // Whether it starts at login is the user's choice, not the session's memory.
    QObject::connect(&application, &QGuiApplication::saveStateRequest,
        [](QSessionManager& session) { session.setRestartHint(QSessionManager::RestartNever); });

    auto const folder = fromProgram(USAGE_METER_BUNDLE);
    auto const bundle = platform::Bundle::open(folder, platform::userLanguages());
    if (!bundle) {
        std::fprintf(stderr, "usage-meter: %s/Info.plist is missing or damaged\n", folder.c_str());
        return EXIT_FAILURE;
    }
    // Not the display name, which the toolkit adds to every window's title.
    QApplication::setApplicationName(toQt(bundle->infoText("CFBundleDisplayName")));
    QApplication::setDesktopFileName(toQt(bundle->identifier()));

    // By our texts, whether or not the toolkit has its own in their language.
    QApplication::setLayoutDirection(QLocale(toQt(bundle->language())).textDirection());
    // The toolkit has texts of its own, such as those of a text field's menu.
    QTranslator translator;
    if (translator.load(QLocale(toQt(bundle->language())), QStringLiteral("qtbase"), QStringLiteral("_"),
            QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(&translator);

    SingleInstance instance(toQt(bundle->identifier()), QDBusConnection::sessionBus());
    switch (instance.start()) {
    case SingleInstance::Outcome::ActivatedFirst:
        return EXIT_SUCCESS;
    case SingleInstance::Outcome::FirstIsSilent:
        printError(QStringLiteral("it runs already, but does not answer"));
        return EXIT_FAILURE;
    case SingleInstance::Outcome::IsFirst:
        break;
    }
    return run(*bundle, instance);
}
