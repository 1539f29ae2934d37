// SPDX-License-Identifier: MIT
#include "platform/XmlParser.h"

#include <libxml/parser.h>

#include <limits>
#include <memory>
#include <mutex>
#include <string>

namespace platform {

namespace {

// About what all names of a document may take, in bytes. Attributes are compared with each other, so that an element of
// a million would be read for hours.
constexpr std::size_t roomForNames = 65'536;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

std::string_view view(xmlChar const* text) { return reinterpret_cast<char const*>(text); }

std::string_view view(xmlChar const* text, int length)
{
    return { reinterpret_cast<char const*>(text), static_cast<std::size_t>(length) };
}

std::string qualifiedName(xmlChar const* localName, xmlChar const* prefix)
{
    std::string const name(view(localName));
    return prefix ? std::string(view(prefix)) + ':' + name : name;
}

// Turns libxml2's events into the delegate's. libxml2 cuts text wherever its own reading makes it, so the pieces
// are joined here, and cut only at markup and around references.
class Events {
public:
    Events(std::string_view document, XmlParserDelegate& delegate)
        : document_(document)
        , delegate_(delegate)
        , context_(xmlNewParserCtxt(), &xmlFreeParserCtxt)
    {
    }

    bool parse()
    {
        if (!context_ || document_.size() > std::numeric_limits<int>::max())
            return false;
        *context_->sax = handler();
        context_->userData = this;
        xmlDictSetLimit(context_->dict, roomForNames);
        xmlCtxtReadMemory(
            context_.get(), document_.data(), static_cast<int>(document_.size()), nullptr, "UTF-8", XML_PARSE_NONET);
        flush();
        // libxml2 counts a document as well-formed that it did not read on for want of room.
        return context_->wellFormed && context_->errNo != XML_ERR_NO_MEMORY;
    }

private:
    static Events& self(void* data) { return *static_cast<Events*>(data); }

    // Without handlers for entities none is ever declared. The comments and instructions are only heard of
    // because they end a run of text.
    static xmlSAXHandler handler()
    {
        xmlSAXHandler handler {};
        handler.initialized = XML_SAX2_MAGIC;
        handler.startElementNs = [](void* data, xmlChar const* localName, xmlChar const* prefix, xmlChar const*, int,
                                     xmlChar const**, int, int defaulted, xmlChar const**) {
            // A document that declares attributes adds them to each of its elements, which takes without end.
            if (defaulted > 0)
                return self(data).refuse();
            self(data).markup();
            self(data).delegate_.didStartElement(qualifiedName(localName, prefix));
        };
        handler.endElementNs = [](void* data, xmlChar const* localName, xmlChar const* prefix, xmlChar const*) {
            self(data).markup();
            self(data).delegate_.didEndElement(qualifiedName(localName, prefix));
        };
        handler.characters
            = [](void* data, xmlChar const* text, int length) { self(data).characters(view(text, length)); };
        handler.ignorableWhitespace = handler.characters;
        handler.cdataBlock = [](void* data, xmlChar const* text, int length) {
            self(data).markup();
            self(data).delegate_.foundCData(view(text, length));
        };
        handler.comment = [](void* data, xmlChar const*) { self(data).markup(); };
        handler.processingInstruction = [](void* data, xmlChar const*, xmlChar const*) { self(data).markup(); };
        handler.serror = &Events::errorOccurred;
        return handler;
    }

    // Keeps errors off stderr. Where a document has an external subset an unknown entity is a mere warning, since
    // that subset might have declared it. Older and newer libxml2 differ in the constness of the error.
    template <typename Error> static void errorOccurred(void* data, Error* error)
    {
        if (error->code != XML_WAR_UNDECLARED_ENTITY)
            return;
        self(data).refuse();
    }

    void refuse()
    {
        flush();
        context_->wellFormed = 0;
        xmlStopParser(context_.get());
    }

    void characters(std::string_view text)
    {
        // Of all events only characters still come after an error.
        if (!context_->wellFormed)
            return;
        bool const isReference = sourceSinceLastEvent().find('&') != std::string_view::npos;
        if (isReference)
            flush();
        run_ += text;
        if (isReference)
            flush();
    }

    void markup()
    {
        sourceSinceLastEvent();
        flush();
    }

    // xmlByteConsumed() would convert all that is left of the document each time.
    std::string_view sourceSinceLastEvent()
    {
        xmlParserInput const& input = *context_->input;
        std::size_t const position = input.consumed + static_cast<std::size_t>(input.cur - input.base);
        std::string_view const source = document_.substr(lastEvent_, position - lastEvent_);
        lastEvent_ = position;
        return source;
    }

    void flush()
    {
        if (!run_.empty())
            delegate_.foundCharacters(run_);
        run_.clear();
    }

    std::string_view document_;
    XmlParserDelegate& delegate_;
    std::unique_ptr<xmlParserCtxt, decltype(&xmlFreeParserCtxt)> context_;
    std::string run_;
    std::size_t lastEvent_ = 0;
};

}

bool parseXml(std::string_view document, XmlParserDelegate& delegate)
{
    static std::once_flag initialized;
    std::call_once(initialized, &xmlInitParser);

    // Positions are counted without the mark, which libxml2 drops.
    if (document.starts_with(byteOrderMark))
        document.remove_prefix(byteOrderMark.size());
    bool const wellFormed = Events(document, delegate).parse();
    if (!wellFormed)
        delegate.parseErrorOccurred();
    return wellFormed;
}

}
