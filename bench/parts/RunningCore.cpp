// SPDX-License-Identifier: MIT
#include "bench/parts/RunningCore.h"

#include "bench/parts/Benchmarks.h"
#include "platform/AtomicFile.h"
#include "platform/PropertyList.h"
#include "storage/SettingsKeys.h"

namespace {

using namespace std::chrono_literals;

platform::Bundle openBundle()
{
    auto bundle = platform::Bundle::open(USAGE_METER_BUNDLE, { "en" });
    require(bundle.has_value(), "the bundle can be read");
    return *std::move(bundle);
}

// Writes the settings as an earlier launch of this version would.
std::filesystem::path storedSettings(
    std::filesystem::path const& folder, platform::Bundle const& bundle, std::vector<std::string> const& entries)
{
    auto file = folder / "preferences.plist";
    platform::Dictionary const settings {
        { settings::tarvoKeys, platform::Array(entries.begin(), entries.end()) },
        { settings::tarvoKeySelected, entries.front() },
        { settings::usageCapValues,
            platform::Dictionary { { RunningCore::home, "100" }, { RunningCore::cottage, "100" } } },
        { settings::lastInstalledVersion, bundle.shortVersion() },
        { settings::fixedCache, 1 },
    };
    require(platform::writeFileAtomically(file, platform::writePropertyList(settings)), "settings can be stored");
    return file;
}

}

RunningCore::RunningCore(
    platform::RunLoop& runLoop, platform::BackgroundQueues& queues, std::vector<std::string> const& entries)
    : bundle(openBundle())
    , defaults(storedSettings(folder.path(), bundle, entries), runLoop)
    , platform { .runLoop = runLoop,
        .backgroundQueues = queues,
        .userDefaults = defaults,
        .urlLoader = provider,
        .bundle = bundle,
        .workspace = workspace,
        .application = application,
        .cachesFolder = folder.path() }
    , layout(outlets, bundle, defaults)
    , controller(platform, outlets)
{
    layout.wire(controller);
    controller.applicationDidFinishLaunching();
}

SettledCore::SettledCore(std::vector<std::string> const& entries)
    : core(runLoop, queues, entries)
{
    // Allow time for the level to fade in.
    runLoop.advance(1s);
    require(core.title() == "57.3GB", "the first report is presented");
}
