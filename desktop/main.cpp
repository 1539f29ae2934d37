// SPDX-License-Identifier: MIT
#include "desktop/Bus.h"
#include "desktop/DesktopRunLoop.h"
#include "desktop/Display.h"
#include "desktop/ExitSignals.h"
#include "desktop/Folders.h"
#include "desktop/LateLocale.h"
#include "desktop/ProcessSetup.h"
#include "desktop/Program.h"
#include "desktop/SingleInstance.h"
#include "platform/Bundle.h"
#include "platform/Locale.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>

namespace {

std::unique_ptr<Display> connectToDisplay(DesktopRunLoop& runLoop)
{
    auto display = Display::connect(runLoop, [&runLoop] {
        // The toolkit reports this itself.
        if (runLoop.hasOuter())
            return;
        std::fprintf(stderr, "usage-meter: lost the connection to display %s\n", Display::name().c_str());
        runLoop.quit(EXIT_FAILURE);
    });
    if (!display)
        std::fprintf(stderr, "usage-meter: cannot connect to display %s\n", Display::name().c_str());
    return display;
}

std::optional<platform::Bundle> openBundle()
{
    auto const folder = fromProgram(USAGE_METER_BUNDLE);
    auto bundle = platform::Bundle::open(folder, platform::userLanguages());
    if (!bundle)
        std::fprintf(stderr, "usage-meter: %s/Info.plist is missing or damaged\n", folder.c_str());
    return bundle;
}

}

int main(int argc, char** argv)
{
    ExitSignals::endProcess();
    openStandardStreams();
    resetSigchld();
    applyDisplayOptions(argc, argv);
    DesktopRunLoop runLoop;
    LateLocale const locale(runLoop, fromProgram(USAGE_METER_PARTS "/usage-meter-locale.so"));
    auto const display = connectToDisplay(runLoop);
    if (!display)
        return EXIT_FAILURE;
    auto const bundle = openBundle();
    if (!bundle)
        return EXIT_FAILURE;
    Bus bus(runLoop);
    if (!bus.isConnected())
        hideBusFromToolkit();
    SingleInstance instance(bundle->identifier(), bus);
    switch (instance.start()) {
    case SingleInstance::Outcome::ActivatedFirst:
        return EXIT_SUCCESS;
    case SingleInstance::Outcome::FirstIsSilent:
        std::fputs("usage-meter: already running, but not responding\n", stderr);
        return EXIT_FAILURE;
    case SingleInstance::Outcome::IsFirst:
        break;
    }
    return Program({ argc, argv }, *bundle, runLoop, *display, bus, instance).run();
}
