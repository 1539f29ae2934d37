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

/// Asks the provider which usage key belongs to the connection that the request comes over. Made for one lookup and
/// then dropped; any one thread, but never the main one.
class RetrieveKey final : private platform::XmlParserDelegate {
public:
    RetrieveKey(platform::UrlLoader& loader, ProviderAddresses addresses);

    /// The first key of the reply as it stands there, untrimmed, blocking for the whole exchange. Nothing when no
    /// well-formed reply arrives, or it has the status "error" or no key.
    std::optional<std::string> keyForCurrentConnection();

private:
    void didStartElement(std::string_view qualifiedName) override;
    void foundCharacters(std::string_view characters) override;
    void didEndElement(std::string_view qualifiedName) override;
    void parseErrorOccurred() override;

    platform::UrlLoader& loader_;
    ProviderAddresses addresses_;
    /// The element opened last; it stays when the element closes.
    std::string currentElement_;
    /// The last run of text of either element: runs are not joined.
    std::string currentKey_;
    std::string currentStatus_;
    std::vector<std::string> keys_;
    bool error_ = false;
};
