// SPDX-License-Identifier: MIT
#include "app/AppDelegate.h"
#include "app/Outlets.h"
#include "platform/Platform.h"

void AppDelegate::updateTitleBar()
{
    platform_.runLoop.perform([this] {
        if (usageDictionary_)
            presentReport();
        else
            presentFailure();
        followSelection();
    });
}

void AppDelegate::presentFailure()
{
    display_.showFailure();
    timers_.armRetry();
}

void AppDelegate::presentReport()
{
    // An overlapping refresh may have failed and started the timer.
    timers_.cancelRetry();
    updateTitleBarDates();
    // The last connection may have been removed before its report arrived.
    display_.showConnection(getCurrentlySelectedKey());
    display_.showFigures(currentFigures());
}

UsageFigures AppDelegate::currentFigures() const
{
    return UsageFigures::fromReport(*usageDictionary_, outlets_.usageLimit.text.get());
}

// A refresh keeps the key it was started with, so its outcome can arrive after the user has selected another connection
// or removed the last one. It is presented, but must not stay on screen under another connection's name. The next
// refresh uses the key that is current by then, so this ends when the user stops switching.
void AppDelegate::followSelection()
{
    if (!reportKey_)
        return;
    if (getCurrentlySelectedKey()) {
        if (*reportKey_ != selectedKey_)
            updateUsageWithCache(true);
        return;
    }
    updateMenuBarLoading();
    display_.showConnection(std::nullopt);
}
