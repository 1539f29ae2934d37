// SPDX-License-Identifier: MIT
#include "fuzz/OneReply.h"
#include "services/RetrieveKey.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    OneReply reply(data, size);
    RetrieveKey(reply, ProviderAddresses("provider.example")).keyForCurrentConnection();
    return 0;
}
