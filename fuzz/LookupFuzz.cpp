// SPDX-License-Identifier: MIT
#include "fuzz/AllText.h"
#include "fuzz/OneReply.h"
#include "services/ReplyText.h"
#include "services/RetrieveKey.h"

#include <cstdlib>

// A key must appear unchanged in a well-formed reply.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    OneReply reply(data, size);
    auto const key = RetrieveKey(reply, ProviderAddresses("provider.example")).keyForCurrentConnection();
    AllText text;
    bool const isWellFormed = platform::parseXml(trimmedReply(*reply.load({})), text);
    if (key && (!isWellFormed || text.characters.find(*key) == std::string::npos))
        std::abort();
    return 0;
}
