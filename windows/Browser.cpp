// SPDX-License-Identifier: MIT
#include "windows/Browser.h"

#include "desktop/ActivationToken.h"
#include "windows/Text.h"

#include <QDesktopServices>
#include <QUrl>

bool openInBrowser(std::string const& url)
{
    bool const isOpened = QDesktopServices::openUrl(QUrl(toQt(url)));
    dropActivationToken();
    return isOpened;
}
