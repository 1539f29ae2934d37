// SPDX-License-Identifier: MIT
#include "app/AppDelegate.h"
#include "app/Outlets.h"
#include "desktop/ActivationToken.h"
#include "desktop/AutostartEntry.h"
#include "desktop/Bus.h"
#include "desktop/ColorScheme.h"
#include "desktop/DesktopRunLoop.h"
#include "desktop/DesktopServices.h"
#include "desktop/Display.h"
#include "desktop/Environment.h"
#include "desktop/ExitSignals.h"
#include "desktop/FreedesktopNotifications.h"
#include "desktop/IconDrawer.h"
#include "desktop/LateLocale.h"
#include "desktop/LateWindows.h"
#include "desktop/SingleInstance.h"
#include "desktop/StatusArea.h"
#include "desktop/SystemColors.h"
#include "platform/Bundle.h"
#include "platform/Locale.h"
#include "platform/Platform.h"
#include "platform/ProcessUrlLoader.h"
#include "platform/Split.h"
#include "platform/ThreadQueues.h"
#include "platform/UserDefaults.h"
#include "ui/MainLayout.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <malloc.h>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace {

using namespace std::chrono_literals;

// What has not ended by then is left to the end of the process.
constexpr platform::Seconds exitTimeout = 50ms;
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
void resetSigchld() { std::signal(SIGCHLD, SIG_DFL); }

// The toolkit's own options say where its windows come up.
void heedDisplayOptions(int count, char** arguments)
{
    for (int i = 1; i + 1 < count; ++i) {
        std::string_view const option = arguments[i];
        if (option == "-platform" || option == "--platform")
            setenv("QT_QPA_PLATFORM", arguments[i + 1], 1);
        else if (option == "-display" || option == "--display")
            setenv("DISPLAY", arguments[i + 1], 1);
    }
}

// The toolkit would wait for half a minute for a bus that lets nobody in.
void hideBusFromToolkit() { setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1); }

std::filesystem::path userFolder(char const* variable, char const* inHome)
{
    // The XDG rules: a relative path counts as none.
    std::filesystem::path const folder = environmentText(variable);
    auto const home = environmentText("HOME");
    return folder.is_absolute() ? folder : std::filesystem::path(home.empty() ? "/" : home) / inHome;
}

std::vector<std::filesystem::path> systemAutostartFolders()
{
    auto folders = environmentText("XDG_CONFIG_DIRS");
    if (folders.empty())
        folders = "/etc/xdg";
    std::vector<std::filesystem::path> autostartFolders;
    for (auto const folder : platform::split(folders, ':'))
        autostartFolders.push_back(std::filesystem::path(folder) / autostart);
    return autostartFolders;
}

// As it was at the start: an upgrade may put another one in its place.
std::filesystem::path const& programFile()
{
    static std::error_code error;
    static auto const file = std::filesystem::read_symlink("/proc/self/exe", error);
    return file;
}

// A place relative to the program's own folder, the same in the build folder and in an installation.
std::filesystem::path fromProgram(char const* place)
{
    return (programFile().parent_path() / place).lexically_normal();
}

std::filesystem::path additionalAuthority(platform::Bundle const& bundle)
{
    auto const file = bundle.infoText("ProviderCertificateAuthority");
    return file.empty() ? std::filesystem::path() : bundle.folder() / file;
}

StatusNotifierItem::Look lookOf(platform::Bundle const& bundle)
{
    return { .productName = bundle.infoText("CFBundleDisplayName"),
        .iconName = bundle.infoText("CFBundleIconFile"),
        // Installed beside the bundle.
        .themePath = bundle.folder().parent_path() / "icons" };
}

FreedesktopNotifications::Look notificationLookOf(platform::Bundle const& bundle)
{
    return { .applicationName = bundle.infoText("CFBundleDisplayName"),
        .identifier = bundle.identifier(),
        .icon = bundle.infoText("CFBundleIconFile"),
        .actionLabel = bundle.localizedString("NOTIFICATION_ACTION") };
}

DBusMenu::TextDirection textDirectionOf(platform::Bundle const& bundle)
{
    return platform::isRightToLeft(bundle.language()) ? DBusMenu::TextDirection::RightToLeft
                                                      : DBusMenu::TextDirection::LeftToRight;
}

/// As the program was called.
struct Arguments {
    int& count;
    char** values;
};

// Where the status item goes, and what becomes of the program where it has no place.
StatusArea::Handlers placesFor(LateWindows& windows, Display const& display, DesktopRunLoop& runLoop, bool& hasPlace)
{
    return { .noStatusArea =
                 [&] {
                     if (auto* const loaded = windows.load())
                         loaded->showUsageWindowWithMenu();
                     else
                         runLoop.quit(EXIT_FAILURE);
                 },
        .placed =
            [&] {
                hasPlace = true;
                if (auto* const loaded = windows.loaded())
                    loaded->leaveMenuToStatusArea();
            },
        .showInOlderTray =
            [&] {
                auto* const loaded = display.hasOlderTray() ? windows.load() : nullptr;
                return loaded && loaded->showInOlderTray();
            },
        .menuRequested =
            [&] {
                if (auto* const loaded = windows.load())
                    loaded->popUpMenu();
            },
        .activationToken = keepActivationToken };
}

// The item outlives a toolkit of no use in a program that begins anew; without a place for it there is no program.
void beginAnew(char** arguments, bool hasPlace)
{
    if (hasPlace)
        execv(programFile().c_str(), arguments);
    _exit(EXIT_FAILURE);
}

int run(Arguments arguments, platform::Bundle const& bundle, DesktopRunLoop& runLoop, Display const& display, Bus& bus,
    SingleInstance& instance)
{
    auto const activationToken = takeActivationToken();
    platform::ThreadQueues queues;
    platform::ProcessUrlLoader urlLoader(
        fromProgram(USAGE_METER_PARTS "/usage-meter-fetch"), additionalAuthority(bundle));
    IconDrawer iconDrawer(fromProgram(USAGE_METER_PARTS "/usage-meter-draw"), runLoop, queues);
    // The helpers have their copy of the environment by now.
    keepActivationToken(activationToken);
    auto const settingsFile = userFolder("XDG_CONFIG_HOME", ".config") / bundle.identifier() / "preferences.plist";
    platform::UserDefaults userDefaults(settingsFile, runLoop);
    auto const notifications = FreedesktopNotifications::connectTo(bus, notificationLookOf(bundle));
    AutostartEntry loginItem({ .identifier = bundle.identifier(),
                                 .displayName = bundle.infoText("CFBundleDisplayName"),
                                 .file = programFile() },
        userFolder("XDG_CONFIG_HOME", ".config") / autostart, systemAutostartFolders());
    DesktopWorkspace workspace;
    DesktopApplication application(runLoop);
    platform::Platform platform {
        .runLoop = runLoop,
        .backgroundQueues = queues,
        .userDefaults = userDefaults,
        .urlLoader = urlLoader,
        .bundle = bundle,
        .workspace = workspace,
        .application = application,
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
    bool hasPlace = false;
    LateWindows windows({ .argumentCount = arguments.count,
                            .arguments = arguments.values,
                            .outlets = outlets,
                            .statusItem = controller.usageStatusItem(),
                            .bundle = bundle,
                            .runLoop = runLoop,
                            .application = application,
                            .partsFolder = fromProgram(USAGE_METER_PARTS),
                            .toolkitFailed =
                                [&] {
                                    userDefaults.flush();
                                    beginAnew(arguments.values, hasPlace);
                                },
                            .toolkitExits =
                                [&](int status) {
                                    userDefaults.flush();
                                    _exit(status);
                                } },
        fromProgram(USAGE_METER_PARTS "/usage-meter-windows.so"));
    workspace.useWindows(windows);
    instance.whenActivated([&controller] { controller.showPreferences(); });
    StatusArea const statusArea(controller.usageStatusItem(), lookOf(bundle), textDirectionOf(bundle), iconDrawer, bus,
        placesFor(windows, display, runLoop, hasPlace));
    ColorScheme const colorScheme(bus, [&windows](Look const& look) { windows.setLook(look); });
    // A refresh needs much memory for a moment, and the next one is hours away.
    auto const trimming = controller.usageStatusItem().title.observeChanges(
        [&runLoop](std::string const&) { runLoop.performAfter(1s, [] { malloc_trim(0); }); });
    ExitSignals const exitSignals(runLoop);
    controller.applicationDidFinishLaunching();
    int const status = runLoop.run();
    userDefaults.flush();
    urlLoader.cancel();
    iconDrawer.cancel();
    if (!queues.waitUntilIdle(exitTimeout))
        _exit(status);
    return status;
}

}

int main(int argc, char** argv)
{
    ExitSignals::endProcess();
    openStandardStreams();
    resetSigchld();
    DesktopRunLoop runLoop;
    LateLocale const locale(runLoop, fromProgram(USAGE_METER_PARTS "/usage-meter-locale.so"));
    heedDisplayOptions(argc, argv);
    auto const display = Display::connect(runLoop, [&runLoop] {
        // The toolkit says so itself.
        if (runLoop.hasOuter())
            return;
        std::fprintf(stderr, "usage-meter: the connection to display %s is lost\n", Display::name().c_str());
        runLoop.quit(EXIT_FAILURE);
    });
    if (!display) {
        std::fprintf(stderr, "usage-meter: no connection to display %s\n", Display::name().c_str());
        return EXIT_FAILURE;
    }
    auto const folder = fromProgram(USAGE_METER_BUNDLE);
    auto const bundle = platform::Bundle::open(folder, platform::userLanguages());
    if (!bundle) {
        std::fprintf(stderr, "usage-meter: %s/Info.plist is missing or damaged\n", folder.c_str());
        return EXIT_FAILURE;
    }
    Bus bus(runLoop);
    if (!bus.isConnected())
        hideBusFromToolkit();
    SingleInstance instance(bundle->identifier(), bus);
    switch (instance.start()) {
    case SingleInstance::Outcome::ActivatedFirst:
        return EXIT_SUCCESS;
    case SingleInstance::Outcome::FirstIsSilent:
        std::fputs("usage-meter: it runs already, but does not answer\n", stderr);
        return EXIT_FAILURE;
    case SingleInstance::Outcome::IsFirst:
        break;
    }
    return run({ argc, argv }, *bundle, runLoop, *display, bus, instance);
}
