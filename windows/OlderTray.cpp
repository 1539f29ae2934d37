// SPDX-License-Identifier: MIT
#include "windows/OlderTray.h"

#include "draw/StatusIcon.h"
#include "windows/Text.h"

#include <QCursor>
#include <QIcon>
#include <QPixmap>
#include <QSystemTrayIcon>

namespace {

QIcon statusIcon(QString const& title)
{
    QIcon icon;
    for (auto const& image : statusImages(title, StatusLook::Icon))
        icon.addPixmap(QPixmap::fromImage(image));
    return icon;
}

}

OlderTray::OlderTray(platform::StatusItem& item, platform::RunLoop& runLoop)
    : item_(item)
    , runLoop_(runLoop)
{
}

OlderTray::~OlderTray() = default;

bool OlderTray::show()
{
    // Asked as late as possible, because the toolkit decides on a kind of tray once, at the first query.
    if (!QSystemTrayIcon::isSystemTrayAvailable())
        return false;
    icon_ = std::make_unique<QSystemTrayIcon>();
    QObject::connect(icon_.get(), &QSystemTrayIcon::activated, icon_.get(), [this] { popUpMenu(); });
    title_ = item_.title.observe([this](std::string const& title) {
        auto const text = toQt(title);
        icon_->setIcon(statusIcon(text));
        icon_->setToolTip(text);
    });
    icon_->show();
    return true;
}

void OlderTray::hide()
{
    title_ = {};
    icon_.reset();
}

void OlderTray::popUpMenu()
{
    if (!menu_)
        menu_ = std::make_unique<MenuMirror>(item_.menu(), runLoop_);
    menu_->popup(QCursor::pos());
}
