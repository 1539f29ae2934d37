// SPDX-License-Identifier: MIT
#include "app/StartAtLogin.h"

#include "app/Outlets.h"
#include "platform/Bundle.h"
#include "platform/LoginItem.h"
#include "platform/Platform.h"

StartAtLogin::StartAtLogin(platform::Platform& platform, Outlets& outlets)
    : platform_(platform)
    , outlets_(outlets)
    , windowObservation_(outlets.window.observeFrontRequests([this] { show(); }))
{
    outlets.startAtLoginToggle.action = [this] { change(); };
    show();
}

void StartAtLogin::show()
{
    outlets_.startAtLoginToggle.hidden.set(!platform_.loginItem);
    outlets_.startAtLoginToggle.on.set(platform_.loginItem && platform_.loginItem->isEnabled());
}

void StartAtLogin::change()
{
    bool const isStored = platform_.loginItem->setEnabled(outlets_.startAtLoginToggle.on.get());
    show();
    if (!isStored)
        outlets_.window.beginSheet({ .messageText = platform_.bundle.localizedString("START_AT_LOGIN_FAILURE_TITLE"),
            .informativeText = platform_.bundle.localizedString("START_AT_LOGIN_FAILURE_MESSAGE") });
}
