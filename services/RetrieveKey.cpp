// SPDX-License-Identifier: MIT
#include "services/RetrieveKey.h"

#include "platform/UrlLoader.h"
#include "services/ReplyText.h"

RetrieveKey::RetrieveKey(platform::UrlLoader& loader, ProviderAddresses addresses)
    : loader_(loader)
    , addresses_(std::move(addresses))
{
}

std::optional<std::string> RetrieveKey::keyForCurrentConnection()
{
    auto const body = loader_.load(addresses_.keyLookup());
    if (!body)
        return std::nullopt;
    parseReply(*body, *this);
    if (error_ || keys_.empty())
        return std::nullopt;
    return keys_.front();
}

void RetrieveKey::didStartElement(std::string_view qualifiedName)
{
    currentElement_ = qualifiedName;
    if (currentElement_ == "key")
        currentKey_.clear();
    else if (currentElement_ == "status")
        currentStatus_.clear();
}

void RetrieveKey::foundCharacters(std::string_view characters)
{
    if (currentElement_ == "key")
        currentKey_ = characters;
    else if (currentElement_ == "status")
        currentStatus_ = characters;
}

void RetrieveKey::didEndElement(std::string_view /*qualifiedName*/)
{
    if (currentElement_ == "key")
        keys_.push_back(currentKey_);
    else if (currentElement_ == "status" && currentStatus_ == "error")
        error_ = true;
}

void RetrieveKey::parseErrorOccurred() { error_ = true; }
