// SPDX-License-Identifier: MIT
#pragma once

#include "platform/XmlParser.h"

#include <string>

/// Collects all text of a document, regardless of the elements in between.
struct AllText final : platform::XmlParserDelegate {
    void foundCharacters(std::string_view run) override
    {
        characters += run;
        content += run;
    }
    void foundCData(std::string_view block) override { content += block; }

    std::string characters;
    /// The characters and the content of CDATA sections.
    std::string content;
};
