// SPDX-License-Identifier: MIT
#include "platform/PropertyList.h"

#include <cstdint>
#include <cstdlib>

// What has been read can be written, and reading it back gives the same value.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    auto const read = platform::readPropertyList(std::string(data, data + size));
    if (!read)
        return 0;
    auto const written = platform::writePropertyList(*read);
    auto const again = platform::readPropertyList(written);
    if (!again || platform::writePropertyList(*again) != written)
        std::abort();
    return 0;
}
