// SPDX-License-Identifier: MIT
#include "desktop/StatusHost.h"

#include "platform/AtomicFile.h"

#include <algorithm>
#include <array>

namespace {

struct KnownHost {
    char const* processName;
    StatusHost host;
};

constexpr std::array hosts {
    KnownHost { "gnome-shell",
        { .look = StatusLook::Label,
            .coloursSymbols = true,
            .losesFirstLabel = true,
            .marksFirstUnderscoreOnly = true } },
    KnownHost { "mate-panel", { .look = StatusLook::Label } },
    KnownHost { "notification-ar", { .look = StatusLook::Label } },
    KnownHost { "ayatana-indicat", { .look = StatusLook::Label } },
    KnownHost { "indicator-appli", { .look = StatusLook::Label } },
    KnownHost { "waybar", { .look = StatusLook::WideIcon } },
};

}

StatusHost statusHostOf(std::string_view processName)
{
    auto const* const found = std::ranges::find_if(
        hosts, [processName](KnownHost const& known) { return processName == known.processName; });
    return found == hosts.end() ? StatusHost {} : found->host;
}

std::string processName(std::uint32_t processId)
{
    auto name = platform::readFile("/proc/" + std::to_string(processId) + "/comm").value_or("");
    return name.substr(0, name.find('\n'));
}
