// SPDX-License-Identifier: MIT
#include "services/UsageData.h"

#include "platform/UrlLoader.h"
#include "services/ReplyText.h"

UsageData::UsageData(platform::UrlLoader& loader, ProviderAddresses addresses)
    : loader_(loader)
    , addresses_(std::move(addresses))
{
}

std::optional<platform::Dictionary> UsageData::updateUsage(std::string_view usageKey)
{
    auto const body = loader_.load(addresses_.usageReport(usageKey));
    if (!body)
        return std::nullopt;

    parsedDataDictionary_.clear();
    if (!parseReply(*body, *this))
        return std::nullopt;
    return parsedDataDictionary_;
}

void UsageData::didStartElement(std::string_view qualifiedName)
{
    if (qualifiedName == "total" || qualifiedName == "used" || qualifiedName == "grace")
        primaryElement_ = qualifiedName;
}

void UsageData::foundCharacters(std::string_view characters) { currentString_ += characters; }

void UsageData::didEndElement(std::string_view qualifiedName)
{
    bool const isFigure = qualifiedName == "download" || qualifiedName == "upload";
    // A figure outside any group is ignored.
    if (isFigure && primaryElement_)
        parsedDataDictionary_.insert_or_assign(
            *primaryElement_ + ":" + std::string(qualifiedName), trimmedText(currentString_));
    currentString_.clear();
}
