// SPDX-License-Identifier: MIT
#include "desktop/DesktopServices.h"

#include "desktop/ActivationToken.h"
#include "windows/Text.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QUrl>

void DesktopWorkspace::open(std::string const& url)
{
    QDesktopServices::openUrl(QUrl(toQt(url)));
    dropActivationToken();
}

void DesktopApplication::activateIgnoringOtherApps()
{
    // Linux desktops know windows, not applications: each window has itself activated when it comes to the front.
}

void DesktopApplication::terminate() { QCoreApplication::exit(0); }
