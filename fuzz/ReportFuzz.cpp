// SPDX-License-Identifier: MIT
#include "fuzz/AllText.h"
#include "fuzz/OneReply.h"
#include "services/ReplyText.h"
#include "services/UsageData.h"

#include <libxml/parser.h>

#include <algorithm>
#include <cstdlib>
#include <optional>

namespace {

// Reads a document into a tree with libxml2, which is independent of our runs of text. It rejects some documents that
// are well-formed to us, for instance with an unknown encoding.
std::optional<std::string> contentOf(std::string_view document)
{
    constexpr int options = XML_PARSE_NONET | XML_PARSE_NOENT | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
    auto* const tree = xmlReadMemory(document.data(), static_cast<int>(document.size()), nullptr, "UTF-8", options);
    if (!tree)
        return std::nullopt;
    auto* const content = xmlNodeGetContent(xmlDocGetRootElement(tree));
    std::string text(reinterpret_cast<char const*>(content));
    xmlFree(content);
    xmlFreeDoc(tree);
    return text;
}

}

// A well-formed reply has at most the six figures, each a trimmed piece of its text, and no text is lost.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    OneReply reply(data, size);
    auto const report = UsageData(reply, ProviderAddresses("provider.example")).updateUsage("key");
    auto const body = *reply.load({});
    AllText text;
    if (platform::parseXml(trimmedReply(body), text) != report.has_value())
        std::abort();
    if (!report)
        return 0;
    bool const areFigures = std::ranges::all_of(*report, [&text](auto const& entry) {
        auto const* const figure = entry.second.template as<std::string>();
        return figure && trimmedText(*figure) == *figure && text.characters.find(*figure) != std::string::npos;
    });
    if (report->size() > 6 || !areFigures || text.content != contentOf(trimmedReply(body)).value_or(text.content))
        std::abort();
    return 0;
}
