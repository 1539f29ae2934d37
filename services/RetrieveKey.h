// SPDX-License-Identifier: MIT
#pragma once

#include "platform/XmlParser.h"
#include "services/ProviderAddresses.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {
class UrlLoader;
}

/// Asks the provider for the usage key of the connection that the request comes from. Use each object for one lookup on
/// a single thread, never the main one.
class RetrieveKey final : private platform::XmlParserDelegate {
public:
    RetrieveKey(platform::UrlLoader& loader, ProviderAddresses addresses);

    /// Returns the first key of the reply, untrimmed. Blocks for the whole exchange. Returns nothing if no well-formed
    /// reply arrives, or if it has the status "error" or no key.
    std::optional<std::string> keyForCurrentConnection();

private:
    void didStartElement(std::string_view qualifiedName) override;
    void foundCharacters(std::string_view characters) override;
    void didEndElement(std::string_view qualifiedName) override;
    void parseErrorOccurred() override;

    platform::UrlLoader& loader_;
    ProviderAddresses addresses_;
    /// The element opened last, kept after it closes.
    std::string currentElement_;
    /// The last run of text of each element; runs are not joined.
    std::string currentKey_;
    std::string currentStatus_;
    std::vector<std::string> keys_;
    bool error_ = false;
};
