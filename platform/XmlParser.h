// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace platform {

/// Receives what parseXml() finds, in document order. Names are reported as written, including any prefix.
class XmlParserDelegate {
public:
    virtual ~XmlParserDelegate() = default;

    virtual void didStartElement(std::string_view /*qualifiedName*/) { }
    /// Reports all the text between two pieces of markup at once. Each character or entity reference is reported
    /// separately.
    virtual void foundCharacters(std::string_view /*characters*/) { }
    /// The content of a CDATA section, which is not reported as characters.
    virtual void foundCData(std::string_view /*block*/) { }
    virtual void didEndElement(std::string_view /*qualifiedName*/) { }
    /// The document is not well-formed. Nothing is reported after this.
    virtual void parseErrorOccurred() { }
};

/// Parses an XML 1.0 document in UTF-8 without accessing the network or any file. The five predefined entities and
/// character references are supported. A document counts as not well-formed if it declares or uses any other entity,
/// has more than 64 KiB of names in all, more than 256 levels, more than 1,024 declared attributes, or default
/// attributes. Returns whether it was well-formed. Thread-safe.
bool parseXml(std::string_view document, XmlParserDelegate& delegate);

}
