// SPDX-License-Identifier: MIT
#include "desktop/Program.h"

#include "desktop/ActivationToken.h"
#include "desktop/Folders.h"
#include "desktop/SystemColors.h"
#include "platform/Locale.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <malloc.h>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;

// Threads that are still running after this time are ended with the process.
constexpr platform::Seconds exitTimeout = 50ms;

std::filesystem::path additionalAuthority(platform::Bundle const& bundle)
{
    auto const file = bundle.infoText("ProviderCertificateAuthority");
    return file.empty() ? std::filesystem::path() : bundle.folder() / file;
}

StatusNotifierItem::Look lookOf(platform::Bundle const& bundle)
{
    return { .productName = bundle.infoText("CFBundleDisplayName"),
        .iconName = bundle.infoText("CFBundleIconFile"),
        // The icons are installed next to the bundle.
        .themePath = bundle.folder().parent_path() / "icons" };
}

FreedesktopNotifications::Look notificationLookOf(platform::Bundle const& bundle)
{
    return { .applicationName = bundle.infoText("CFBundleDisplayName"),
        .identifier = bundle.identifier(),
        .icon = bundle.infoText("CFBundleIconFile"),
        .actionLabel = bundle.localizedString("NOTIFICATION_ACTION") };
}

AutostartEntry::Program autostartedProgram(platform::Bundle const& bundle)
{
    return {
        .identifier = bundle.identifier(), .displayName = bundle.infoText("CFBundleDisplayName"), .file = programFile()
    };
}

DBusMenu::TextDirection textDirectionOf(platform::Bundle const& bundle)
{
    return platform::isRightToLeft(bundle.language()) ? DBusMenu::TextDirection::RightToLeft
                                                      : DBusMenu::TextDirection::LeftToRight;
}

}

Program::Program(Arguments arguments, platform::Bundle const& bundle, DesktopRunLoop& runLoop, Display const& display,
    Bus& bus, SingleInstance& instance)
    : bundle_(bundle)
    , runLoop_(runLoop)
    , activationToken_(takeActivationToken())
    , urlLoader_(fromProgram(USAGE_METER_PARTS "/usage-meter-fetch"), additionalAuthority(bundle))
    , iconDrawer_(fromProgram(USAGE_METER_PARTS "/usage-meter-draw"), runLoop, queues_)
    , userDefaults_(userConfigFolder() / bundle.identifier() / "preferences.plist", runLoop)
    , notifications_(FreedesktopNotifications::connectTo(bus, notificationLookOf(bundle)))
    , loginItem_(autostartedProgram(bundle), userAutostartFolder(), systemAutostartFolders())
    , application_(runLoop)
    , platform_(platformServices())
    , layout_(outlets_, bundle, userDefaults_, platform_.numberLocale)
    , controller_(platform_, outlets_)
    , windows_(windowsContext(arguments), fromProgram(USAGE_METER_PARTS "/usage-meter-windows.so"))
    , statusArea_(controller_.usageStatusItem(), lookOf(bundle), textDirectionOf(bundle), iconDrawer_, bus,
          statusAreaHandlers(display))
    , colorScheme_(bus, [this](Look const& look) { windows_.setLook(look); })
    , exitSignals_(runLoop)
{
    // The helpers have copied the environment by now.
    keepActivationToken(activationToken_);
    layout_.wire(controller_);
    workspace_.useWindows(windows_);
    instance.whenActivated([this] { controller_.showPreferences(); });
    // A refresh needs much memory for a moment, and the next one is hours away.
    trimming_ = controller_.usageStatusItem().title.observeChanges(
        [this](std::string const&) { runLoop_.performAfter(1s, [] { malloc_trim(0); }); });
}

int Program::run()
{
    controller_.applicationDidFinishLaunching();
    int const status = runLoop_.run();
    userDefaults_.flush();
    urlLoader_.cancel();
    iconDrawer_.cancel();
    if (!queues_.waitUntilIdle(exitTimeout))
        _exit(status);
    return status;
}

platform::Platform Program::platformServices()
{
    return { .runLoop = runLoop_,
        .backgroundQueues = queues_,
        .userDefaults = userDefaults_,
        .urlLoader = urlLoader_,
        .bundle = bundle_,
        .workspace = workspace_,
        .application = application_,
        .notificationCenter = notifications_.get(),
        .loginItem = &loginItem_,
        .cachesFolder = userCacheFolder(),
        .numberLocale = platform::userLocale("LC_NUMERIC"),
        .dateLocale = platform::userLocale("LC_TIME"),
        .systemColors = systemColors };
}

WindowsContext Program::windowsContext(Arguments arguments)
{
    return { .argumentCount = arguments.count,
        .arguments = arguments.values,
        .outlets = outlets_,
        .statusItem = controller_.usageStatusItem(),
        .bundle = bundle_,
        .runLoop = runLoop_,
        .application = application_,
        .partsFolder = fromProgram(USAGE_METER_PARTS),
        .toolkitFailed = [this, values = arguments.values] { restart(values); },
        .toolkitExits =
            [this](int status) {
                userDefaults_.flush();
                _exit(status);
            } };
}

StatusArea::Handlers Program::statusAreaHandlers(Display const& display)
{
    return { .noStatusArea = [this] { showMenuInWindow(); },
        .placed =
            [this] {
                hasPlace_ = true;
                if (auto* const loaded = windows_.loaded())
                    loaded->leaveMenuToStatusArea();
            },
        .showInOlderTray =
            [this, &display] {
                auto* const loaded = display.hasOlderTray() ? windows_.load() : nullptr;
                return loaded && loaded->showInOlderTray();
            },
        .menuRequested =
            [this] {
                if (auto* const loaded = windows_.load())
                    loaded->popUpMenu();
            },
        .activationToken = keepActivationToken };
}

void Program::showMenuInWindow()
{
    if (auto* const loaded = windows_.load())
        loaded->showUsageWindowWithMenu();
    else
        runLoop_.quit(EXIT_FAILURE);
}

// If the toolkit is unusable but the item has a place, the program restarts to keep the item. Otherwise it ends.
void Program::restart(char** arguments)
{
    userDefaults_.flush();
    if (hasPlace_)
        execv(programFile().c_str(), arguments);
    _exit(EXIT_FAILURE);
}
