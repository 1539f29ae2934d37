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
{
}

AppDelegate::~AppDelegate() = default;

IntervalChoice AppDelegate::intervalChoice() const
{
    return outlets_.updateIntervalPopupButton.indexOfSelectedItem.get();
}

std::string AppDelegate::text(std::string_view key) const { return platform_.bundle.localizedString(key); }

std::string AppDelegate::text(std::string_view key, std::string_view argument) const
{
    constexpr std::string_view place = "%@";
    auto format = text(key);
    auto const position = format.find(place);
    return position == std::string::npos ? format : format.replace(position, place.size(), argument);
}

std::string AppDelegate::labelled(std::string_view labelKey, std::string_view value) const
{
    return text(labelKey).append(" ").append(value);
}

CacheData AppDelegate::cacheData() const
{
    return { platform_.cachesFolder, platform_.bundle.identifier(), platform_.runLoop };
}

ProviderAddresses AppDelegate::addresses() const { return ProviderAddresses(platform_.bundle.providerHost()); }
