// SPDX-License-Identifier: MIT
#include "platform/XmlParser.h"

#include <expat.h>

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <set>
#include <string>

namespace platform {

namespace {

// The maximum total length of a document's names in bytes.
constexpr std::size_t maximumNamesLength = 65'536;
// Expat goes through all of an element's declared attributes each time the element occurs.
constexpr int maximumDeclaredAttributes = 1'024;
constexpr int maximumDepth = 256;

std::string_view view(char const* text, int length) { return { text, static_cast<std::size_t>(length) }; }

// Translates expat's events into the delegate's. Expat splits text at line breaks, so the pieces are joined here, and
// split only at markup and around references.
class Events {
public:
    // Nothing after a zero byte is read. This rules out UTF-16, which expat would recognize, as such a document always
    // contains one.
    Events(std::string_view document, XmlParserDelegate& delegate)
        : document_(document.substr(0, document.find('\0')))
        , delegate_(delegate)
        , parser_(XML_ParserCreate("UTF-8"), &XML_ParserFree)
    {
    }

    bool parse()
    {
        if (!parser_ || document_.size() > std::numeric_limits<int>::max())
            return false;
        setHandlers();
        bool const wellFormed
            = XML_Parse(parser_.get(), document_.data(), static_cast<int>(document_.size()), XML_TRUE) == XML_STATUS_OK;
        flush();
        return wellFormed;
    }

private:
    static Events& self(void* data) { return *static_cast<Events*>(data); }

    void setHandlers()
    {
        XML_Parser const parser = parser_.get();
        XML_SetUserData(parser, this);
        XML_SetElementHandler(
            parser, [](void* data, char const* name, char const** attributes) { self(data).start(name, attributes); },
            [](void* data, char const* name) { self(data).end(name); });
        XML_SetCharacterDataHandler(
            parser, [](void* data, char const* text, int length) { self(data).characters(view(text, length)); });
        XML_SetDefaultHandler(
            parser, [](void* data, char const* text, int length) { self(data).source_ = view(text, length); });
        XML_SetCdataSectionHandler(
            parser, [](void* data) { self(data).setInsideCData(true); },
            [](void* data) { self(data).setInsideCData(false); });
        // Comments and instructions end a run of text.
        XML_SetCommentHandler(parser, [](void* data, char const*) { self(data).flush(); });
        XML_SetProcessingInstructionHandler(parser, [](void* data, char const* target, char const*) {
            self(data).flush();
            self(data).count(target);
        });
        XML_SetAttlistDeclHandler(parser,
            [](void* data, char const*, char const* name, char const*, char const*, int) { self(data).declare(name); });
        refuseEntities();
    }

    // Expat skips an undeclared entity that an external subset might have declared, and skips parameter entities.
    void refuseEntities()
    {
        XML_Parser const parser = parser_.get();
        XML_SetEntityDeclHandler(parser,
            [](void* data, char const*, int, char const*, int, char const*, char const*, char const*, char const*) {
                self(data).refuse();
            });
        XML_SetSkippedEntityHandler(parser, [](void* data, char const*, int) { self(data).refuse(); });
        XML_SetParamEntityParsing(parser, XML_PARAM_ENTITY_PARSING_ALWAYS);
    }

    void refuse()
    {
        refused_ = true;
        XML_StopParser(parser_.get(), XML_FALSE);
    }

    void start(char const* name, char const** attributes)
    {
        flush();
        ++depth_;
        count(name);
        bool const hasDefaults = attributes[XML_GetSpecifiedAttributeCount(parser_.get())] != nullptr;
        bool const hasEntity = *attributes && hasUnknownEntity(source());
        if (hasDefaults || hasEntity || depth_ > maximumDepth)
            refuse();
        for (; *attributes && !refused_; attributes += 2)
            count(*attributes);
        if (!refused_)
            delegate_.didStartElement(name);
    }

    void end(char const* name)
    {
        // For an empty element, the end is reported even after its start was refused.
        if (refused_)
            return;
        flush();
        --depth_;
        delegate_.didEndElement(name);
    }

    void characters(std::string_view text)
    {
        bool const isReference = !insideCData_ && source().starts_with('&');
        if (isReference)
            flush();
        run_ += text;
        if (isReference)
            flush();
    }

    void setInsideCData(bool isInside)
    {
        flush();
        insideCData_ = isInside;
    }

    void declare(char const* attribute)
    {
        count(attribute);
        if (++declaredAttributes_ > maximumDeclaredAttributes)
            refuse();
    }

    void count(std::string_view name)
    {
        bool const isAlwaysRoom = document_.size() <= maximumNamesLength;
        if (isAlwaysRoom || names_.contains(name))
            return;
        names_.emplace(name);
        lengthOfNames_ += name.size();
        if (lengthOfNames_ > maximumNamesLength)
            refuse();
    }

    // Expat does not report entities that it skips in attributes.
    static bool hasUnknownEntity(std::string_view tag)
    {
        constexpr std::array<std::string_view, 5> known { "amp", "lt", "gt", "quot", "apos" };
        for (auto at = tag.find('&'); at != std::string_view::npos; at = tag.find('&', at + 1)) {
            auto const name = tag.substr(at + 1, tag.find(';', at) - at - 1);
            if (!name.starts_with('#') && std::ranges::find(known, name) == known.end())
                return true;
        }
        return false;
    }

    // The source text of the current event, which expat passes to the default handler.
    std::string_view source()
    {
        XML_DefaultCurrent(parser_.get());
        return source_;
    }

    void flush()
    {
        if (insideCData_)
            delegate_.foundCData(run_);
        else if (!run_.empty())
            delegate_.foundCharacters(run_);
        run_.clear();
    }

    std::string_view document_;
    XmlParserDelegate& delegate_;
    std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser_;
    std::string_view source_;
    std::string run_;
    bool insideCData_ = false;
    bool refused_ = false;
    int depth_ = 0;
    int declaredAttributes_ = 0;
    std::set<std::string, std::less<>> names_;
    std::size_t lengthOfNames_ = 0;
};

}

bool parseXml(std::string_view document, XmlParserDelegate& delegate)
{
    bool const wellFormed = Events(document, delegate).parse();
    if (!wellFormed)
        delegate.parseErrorOccurred();
    return wellFormed;
}

}
