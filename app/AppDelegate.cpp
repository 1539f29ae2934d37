// SPDX-License-Identifier: MIT
#include "app/AppDelegate.h"

#include "app/Outlets.h"
#include "detail/DetailedUsageViewController.h"
#include "platform/Bundle.h"
#include "platform/Platform.h"
#include "services/ProviderAddresses.h"
#include "storage/CacheData.h"

AppDelegate::AppDelegate(platform::Platform& platform, Outlets& outlets)
    : platform_(platform)
    , outlets_(outlets)
    , usageStatusItem_(outlets.dropDownMenu)
    , usageFormatter_(platform.numberLocale)
    , display_(platform, outlets, usageStatusItem_,
          [this](double volume, auto unit) { return formattedUsageStringWithUsageValue(volume, unit); })
    , dates_(platform, outlets, [this] { return nextUpdate(); })
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

ProviderAddresses AppDelegate::addresses() const { return ProviderAddresses(platform_.bundle.providerHost()); }
