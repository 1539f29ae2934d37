// SPDX-License-Identifier: MIT
#include "desktop/StatusHost.h"

#include <QFile>

#include <algorithm>
#include <array>

namespace {

struct Host {
    char const* processName;
    StatusLook look;
};

constexpr std::array hosts {
    Host { "gnome-shell", StatusLook::Label },
    Host { "mate-panel", StatusLook::Label },
    Host { "notification-ar", StatusLook::Label },
    Host { "ayatana-indicat", StatusLook::Label },
    Host { "indicator-appli", StatusLook::Label },
    Host { "waybar", StatusLook::WideIcon },
};

}

StatusLook statusLookOf(QString const& processName)
{
    auto const* const found = std::ranges::find_if(
        hosts, [&processName](Host const& host) { return processName == QLatin1String(host.processName); });
    return found == hosts.end() ? StatusLook::Icon : found->look;
}

QString processName(uint processId)
{
    QFile file(QStringLiteral("/proc/%1/comm").arg(processId));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).trimmed();
}
