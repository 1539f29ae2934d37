// SPDX-License-Identifier: MIT
#include "windows/Browser.h"

#include "desktop/ActivationToken.h"
#include "windows/Text.h"

#include <QDesktopServices>
#include <QUrl>

void openInBrowser(std::string const& url)
{
    QDesktopServices::openUrl(QUrl(toQt(url)));
    dropActivationToken();
}
