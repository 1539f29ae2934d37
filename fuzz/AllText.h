// SPDX-License-Identifier: MIT
#pragma once

#include "platform/XmlParser.h"

#include <string>

/// All text of a document in one, whatever stands between.
struct AllText final : platform::XmlParserDelegate {
    void foundCharacters(std::string_view run) override
    {
        characters += run;
        content += run;
    }
    void foundCData(std::string_view block) override { content += block; }

    std::string characters;
    /// The characters and what CDATA sections hold.
    std::string content;
};
