// SPDX-License-Identifier: MIT
#include "desktop/StatusHost.h"

#include <QFile>

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

StatusHost statusHostOf(QString const& processName)
{
    auto const* const found = std::ranges::find_if(
        hosts, [&processName](KnownHost const& known) { return processName == QLatin1String(known.processName); });
    return found == hosts.end() ? StatusHost {} : found->host;
}

QString processName(uint processId)
{
    QFile file(QStringLiteral("/proc/%1/comm").arg(processId));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).trimmed();
}
