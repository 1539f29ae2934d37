// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace platform {

/// What an XmlParser finds, in document order. Names are as written: a prefix is part of the name.
class XmlParserDelegate {
public:
    virtual ~XmlParserDelegate() = default;

    virtual void didStartElement(std::string_view /*qualifiedName*/) { }
    /// A run is all the text between two pieces of markup; a character or entity reference is a run of its own.
    virtual void foundCharacters(std::string_view /*characters*/) { }
    /// The content of a CDATA section, which is not reported as characters.
    virtual void foundCData(std::string_view /*block*/) { }
    virtual void didEndElement(std::string_view /*qualifiedName*/) { }
    /// The document is not well-formed; nothing is reported after this.
    virtual void parseErrorOccurred() { }
};

/// Parses an XML 1.0 document in UTF-8 without touching the network or any file. The five predefined entities and
/// character references are known; any other entity, declared or used, makes the document not well-formed, and so do
/// names of more than 64 KiB in all, more than 256 levels, more than 1,024 declared attributes, and attributes by
/// default. Returns whether it was well-formed. Any thread.
bool parseXml(std::string_view document, XmlParserDelegate& delegate);

}
