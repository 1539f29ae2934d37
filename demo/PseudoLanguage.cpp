// SPDX-License-Identifier: MIT
#include "demo/PseudoLanguage.h"

#include <cstddef>

namespace demo {

namespace {

constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr std::u16string_view accented = u"åƀçđéƒĝĥíĵķłɱñöþǫŕšţûṽŵẋýžÅƁÇĐÉƑĜĤÎĴĶĻṀÑÖÞǪŔŠŢÛṼŴẊÝŽ";
static_assert(letters.size() == accented.size());
// Made of short words, because a text that wraps may need a place to break.
constexpr std::string_view filling = " and so on";

// All of these characters take fewer than four bytes.
void appendUtf8(std::string& text, char16_t character)
{
    auto const bits = [character](unsigned shift, unsigned mask) { return (unsigned { character } >> shift) & mask; };
    if (character < 0x800) {
        text += static_cast<char>(0xC0U | bits(6, 0x1F));
    } else {
        text += static_cast<char>(0xE0U | bits(12, 0x0F));
        text += static_cast<char>(0x80U | bits(6, 0x3F));
    }
    text += static_cast<char>(0x80U | bits(0, 0x3F));
}

void appendAccented(std::string& text, char character)
{
    std::size_t const place = letters.find(character);
    if (place == std::string_view::npos)
        text += character;
    else
        appendUtf8(text, accented[place]);
}

bool beginsCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; }

}

std::string pseudoText(std::string_view text)
{
    std::string pseudo = "[";
    std::size_t length = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        length += beginsCharacter(text[i]) ? 1 : 0;
        bool const isInPlace = i > 0 && text[i - 1] == '%';
        if (isInPlace)
            pseudo += text[i];
        else
            appendAccented(pseudo, text[i]);
    }
    std::size_t const longer = (length * 4 + 9) / 10;
    for (std::size_t i = 0; i < longer; ++i)
        appendAccented(pseudo, filling[i % filling.size()]);
    return pseudo + "]";
}

platform::Dictionary pseudoTable(platform::Dictionary const& texts)
{
    platform::Dictionary table;
    for (auto const& [key, value] : texts) {
        if (auto const* const text = value.as<std::string>())
            table.insert_or_assign(key, pseudoText(*text));
    }
    return table;
}

}
