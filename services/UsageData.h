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

/// Fetches and reads one usage report of the provider. Made for one call and then dropped; any one thread, but never
/// the main one.
class UsageData final : private platform::XmlParserDelegate {
public:
    UsageData(platform::UrlLoader& loader, ProviderAddresses addresses);

    /// The figures of a key's report, blocking for the whole exchange: up to six texts named "<group>:<figure>", the
    /// group being "used", "grace" or "total" and the figure "download" or "upload", each a decimal count of bytes as
    /// the provider wrote it. Nothing when no well-formed reply arrives; a reply without figures is an empty
    /// dictionary.
    std::optional<platform::Dictionary> updateUsage(std::string_view usageKey);

private:
    void didStartElement(std::string_view qualifiedName) override;
    void foundCharacters(std::string_view characters) override;
    void didEndElement(std::string_view qualifiedName) override;

    platform::UrlLoader& loader_;
    ProviderAddresses addresses_;
    /// The group opened last; it stays when the group closes.
    std::optional<std::string> primaryElement_;
    /// All text since the last closing tag.
    std::string currentString_;
    platform::Dictionary parsedDataDictionary_;
};
