// SPDX-License-Identifier: MIT
#include "fuzz/OneReply.h"
#include "services/UsageData.h"

#include <cstdlib>

// A reply has the six figures at most, whatever it is.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    OneReply reply(data, size);
    auto const report = UsageData(reply, ProviderAddresses("provider.example")).updateUsage("key");
    if (report && report->size() > 6)
        std::abort();
    return 0;
}
