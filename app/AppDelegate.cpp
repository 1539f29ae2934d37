// SPDX-License-Identifier: MIT
#include "app/AppDelegate.h"

#include "app/Outlets.h"
#include "app/TouchBarMaker.h"
#include "detail/DetailedUsageViewController.h"
#include "platform/Bundle.h"
#include "platform/Platform.h"
#include "storage/CacheData.h"

AppDelegate::AppDelegate(platform::Platform& platform, Outlets& outlets)
    : platform_(platform)
    , outlets_(outlets)
    , usageStatusItem_(outlets.dropDownMenu)
    , storedKeys_(platform.userDefaults)
    , usageCaps_(platform.userDefaults)
    , volumeFormatter_(platform.bundle, platform.numberLocale)
    , timers_(
          platform.runLoop, [this] { updateUsageWithCacheTimer(); }, [this] { doFixError(); })
    , display_(platform, outlets, usageStatusItem_, volumeFormatter_)
    , dates_(platform, outlets, [this] { return timers_.nextUpdate(); })
    , addKeySheet_(platform, outlets)
    , cacheClearedMessage_(platform.runLoop, outlets.cacheClearedText)
    , startAtLogin_(platform, outlets)
{
}

AppDelegate::~AppDelegate() = default;

IntervalChoice AppDelegate::intervalChoice() const
{
    return outlets_.updateIntervalPopupButton.indexOfSelectedItem.get();
}

std::string AppDelegate::text(std::string_view key) const { return platform_.bundle.localizedString(key); }

CacheData AppDelegate::cacheData() const
{
    return { platform_.cachesFolder, platform_.bundle.identifier(), platform_.runLoop };
}
