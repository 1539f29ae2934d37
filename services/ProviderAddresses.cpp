// SPDX-License-Identifier: MIT
#include "services/ProviderAddresses.h"

std::string ProviderAddresses::usageReport(std::string_view usageKey) const
{
    return "https://" + host_ + "/account/usage/api?key=" + std::string(usageKey);
}

std::string ProviderAddresses::keyLookup() const { return "https://www." + host_ + "/account/usage/api?request=key"; }

std::string ProviderAddresses::helpPage() const { return "https://www." + host_ + "/support/usage/api"; }

std::string ProviderAddresses::usagePage(int year, int month) const
{
    return "https://" + host_ + "/support/usage?year=" + std::to_string(year) + "&month=" + std::to_string(month);
}

bool ProviderAddresses::admitsNavigation(std::string_view url) const
{
    return url.find("https://" + host_) != std::string_view::npos;
}
