// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Value.h"
#include "platform/XmlParser.h"
#include "services/ProviderAddresses.h"

#include <optional>
#include <string>
#include <string_view>

namespace platform {
class UrlLoader;
}

/// Fetches and parses one usage report from the provider. Use each object for one call on a single thread, never the
/// main one.
class UsageData final : private platform::XmlParserDelegate {
public:
    UsageData(platform::UrlLoader& loader, ProviderAddresses addresses);

    /// Returns the figures of a key's report. Blocks for the whole exchange. There are up to six texts named
    /// "<group>:<figure>", with the groups "used", "grace" and "total" and the figures "download" and "upload". Each is
    /// a decimal count of bytes as the provider wrote it. Returns nothing if no well-formed reply arrives, and an empty
    /// dictionary for a reply without figures.
    std::optional<platform::Dictionary> updateUsage(std::string_view usageKey);

private:
    void didStartElement(std::string_view qualifiedName) override;
    void foundCharacters(std::string_view characters) override;
    void didEndElement(std::string_view qualifiedName) override;

    platform::UrlLoader& loader_;
    ProviderAddresses addresses_;
    /// The group opened last, kept after it closes.
    std::optional<std::string> primaryElement_;
    /// All text since the last closing tag.
    std::string currentString_;
    platform::Dictionary parsedDataDictionary_;
};
