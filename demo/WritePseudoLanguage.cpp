// SPDX-License-Identifier: MIT
// Makes the table of the test language from another table: usage-meter-pseudo-language IN OUT
#include "demo/PseudoLanguage.h"
#include "platform/AtomicFile.h"
#include "platform/PropertyList.h"

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fputs("usage: usage-meter-pseudo-language IN OUT\n", stderr);
        return EXIT_FAILURE;
    }
    auto const bytes = platform::readFile(argv[1]);
    auto const texts = bytes ? platform::readPropertyList(*bytes) : std::nullopt;
    if (!texts) {
        std::fprintf(stderr, "usage-meter-pseudo-language: %s is no table of texts\n", argv[1]);
        return EXIT_FAILURE;
    }
    if (platform::writeFileAtomically(argv[2], platform::writePropertyList(demo::pseudoTable(*texts))))
        return EXIT_SUCCESS;
    std::fprintf(stderr, "usage-meter-pseudo-language: %s cannot be written\n", argv[2]);
    return EXIT_FAILURE;
}
