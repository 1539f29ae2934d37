// SPDX-License-Identifier: MIT
#include "app/AddKeySheet.h"

#include "app/Outlets.h"
#include "platform/BackgroundQueues.h"
#include "platform/Bundle.h"
#include "platform/Platform.h"
#include "platform/UrlLoader.h"
#include "platform/Workspace.h"
#include "services/RetrieveKey.h"

#include <utility>

AddKeySheet::AddKeySheet(platform::Platform& platform, Outlets& outlets)
    : platform_(platform)
    , outlets_(outlets)
    , addresses_(platform.bundle.providerHost())
    , keyObservation_(outlets.usageID.text.observeChanges([this](std::string const&) { showKeyStatus(); }))
{
}

void AddKeySheet::open()
{
    outlets_.window.beginSheet(outlets_.addKeyWindow);
    checkCurrentKey();
}

void AddKeySheet::cancelButton() { outlets_.window.endSheet(outlets_.addKeyWindow); }

void AddKeySheet::beginAlert(platform::Alert alert) { alertWindow().beginSheet(std::move(alert)); }

void AddKeySheet::checkCurrentKey() { checkCurrentKeyWithError(false); }

void AddKeySheet::autoRetrieveCodeButton() { checkCurrentKeyWithError(true); }

void AddKeySheet::checkCurrentKeyWithError(bool showError)
{
    outlets_.usageIDStatus.text.set(text("LOOKUP_UNDER_WAY"));
    bool const started = platform_.backgroundQueues.async("tarvobackground", [this, showError] {
        auto key = RetrieveKey(platform_.urlLoader, addresses_).keyForCurrentConnection();
        platform_.runLoop.perform([this, showError, found = std::move(key)] { acceptLookup(found, showError); });
    });
    if (!started)
        acceptLookup(std::nullopt, showError);
}

// The answer is used whenever it arrives, whether or not the sheet is still open.
void AddKeySheet::acceptLookup(std::optional<std::string> const& key, bool showError)
{
    if (key)
        outlets_.usageID.text.set(*key);
    else if (showError)
        showLookupFailure();
    // A message about the key itself takes precedence.
    showKeyStatus();
    if (outlets_.usageIDStatus.text.get().empty())
        outlets_.usageIDStatus.text.set(text(key ? "LOOKUP_FOUND" : "AUTO_FAILURE_TITLE"));
}

// Such a key is accepted anyway, and leads to the error state.
void AddKeySheet::showKeyStatus()
{
    auto const& key = outlets_.usageID.text.get();
    bool const isUsual = platform::isWellFormedUrl(addresses_.usageReport(key));
    outlets_.usageIDStatus.text.set(isUsual ? std::string() : text("KEY_UNUSUAL"));
}

platform::Window& AddKeySheet::alertWindow()
{
    return outlets_.addKeyWindow.visible.get() ? outlets_.addKeyWindow : outlets_.window;
}

// One alert covers all lookups that fail before it is answered. A user who has closed both windows is no longer waiting
// for it.
void AddKeySheet::showLookupFailure()
{
    auto& window = alertWindow();
    auto title = text("AUTO_FAILURE_TITLE");
    if (!window.visible.get() || window.hasAlert(title))
        return;
    window.beginSheet({ .messageText = std::move(title),
        .informativeText = text("AUTO_FAILURE_MESSAGE"),
        .buttons = { text("DISMISS") } });
}

void AddKeySheet::getUsageCode()
{
    auto const page = addresses_.helpPage();
    if (!platform_.workspace.open(page))
        beginAlert({ .messageText = text("GET_KEY_FAILURE_TITLE"),
            .informativeText = platform_.bundle.localizedString("GET_KEY_FAILURE_MESSAGE", page) });
}

std::string AddKeySheet::text(std::string_view key) const { return platform_.bundle.localizedString(key); }
