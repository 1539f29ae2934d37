// SPDX-License-Identifier: MIT
#include "services/ProviderAddresses.h"

std::string ProviderAddresses::usageReport(std::string_view usageKey) const
{
    return "https://" + host_ + "/account/usage/api?key=" + std::string(usageKey);
}

std::string ProviderAddresses::keyLookup() const { return "https://www." + host_ + "/account/usage/api?request=key"; }

std::string ProviderAddresses::helpPage() const { return "https://www." + host_ + "/support/usage/api"; }
