// SPDX-License-Identifier: MIT
#include "platform/Bundle.h"

#include "platform/AtomicFile.h"
#include "platform/LocaleRules.h"
#include "platform/PropertyList.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>

namespace platform {

namespace {

std::optional<Dictionary> readDictionary(std::filesystem::path const& file)
{
    auto const bytes = readFile(file);
    return bytes ? readPropertyList(*bytes) : std::nullopt;
}

std::string textOf(Dictionary const& dictionary, std::string_view key)
{
    auto const* const text = entry<std::string>(dictionary, key);
    return text ? *text : std::string();
}

// The suffixes of keys. All other plural forms use the plain key.
constexpr std::array<std::string_view, 5> pluralForms { "_ZERO", "_ONE", "_TWO", "_FEW", "_MANY" };

bool isPluralForm(std::string_view key)
{
    return std::ranges::any_of(pluralForms, [key](std::string_view form) { return key.ends_with(form); });
}

bool canNameAFolder(std::string_view name)
{
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos;
}

char const* variantOf(Appearance appearance)
{
    switch (appearance) {
    case Appearance::Light:
        return "light";
    case Appearance::Dark:
        return "dark";
    case Appearance::HighContrastLight:
    case Appearance::HighContrastDark:
        break;
    }
    return "highContrast";
}

// Parses "#RRGGBB".
std::optional<Color> parseColor(std::string_view text)
{
    if (text.size() != 7 || text.front() != '#')
        return std::nullopt;
    unsigned value = 0;
    auto const* const end = text.data() + text.size();
    if (std::from_chars(text.data() + 1, end, value, 16).ptr != end)
        return std::nullopt;
    auto const byte = [value](unsigned shift) { return static_cast<std::uint8_t>((value >> shift) & 0xFFU); };
    return Color { byte(16), byte(8), byte(0) };
}

}

std::string withArgument(std::string text, std::string_view argument)
{
    for (std::string_view const place : { "%@", "%i" }) {
        if (auto const position = text.find(place); position != std::string::npos)
            return text.replace(position, place.size(), argument);
    }
    return text;
}

std::optional<Bundle> Bundle::open(std::filesystem::path const& folder, std::vector<std::string> const& languages)
{
    auto info = readDictionary(folder / "Info.plist");
    if (!info)
        return std::nullopt;

    Bundle bundle;
    bundle.folder_ = folder;
    bundle.info_ = *std::move(info);
    if (!canNameAFolder(bundle.identifier()) || bundle.shortVersion().empty() || bundle.providerHost().empty())
        return std::nullopt;

    bundle.readStrings(languages);
    bundle.colors_ = readDictionary(folder / "Colors.plist").value_or(Dictionary {});
    return bundle;
}

void Bundle::readStrings(std::vector<std::string> languages)
{
    languages.emplace_back("en");
    for (auto const& language : languages) {
        if (auto strings = readDictionary(folder_ / (language + ".lproj") / "Localizable.strings")) {
            strings_ = *std::move(strings);
            language_ = language;
            hasPluralForms_ = std::ranges::any_of(strings_, [](auto const& text) { return isPluralForm(text.first); });
            return;
        }
    }
}

std::string Bundle::infoText(std::string_view key) const { return textOf(info_, key); }

std::string Bundle::localizedString(std::string_view key) const
{
    auto const* const text = entry<std::string>(strings_, key);
    return text ? *text : std::string(key);
}

std::string Bundle::localizedString(std::string_view key, std::string_view argument) const
{
    return withArgument(localizedString(key), argument);
}

std::string Bundle::labelledString(std::string_view labelKey, std::string_view value) const
{
    return localizedString(labelKey).append(" ").append(value);
}

std::string Bundle::localizedString(std::string_view key, int count) const
{
    if (!hasPluralForms_)
        return localizedString(key);
    auto form = std::string(key).append("_");
    for (char const letter : localeRules().pluralForm(count, language_))
        form += static_cast<char>(std::toupper(letter));
    return localizedString(strings_.contains(form) ? form : key);
}

std::optional<Color> Bundle::namedColor(std::string_view name, Appearance appearance) const
{
    auto const* const variants = entry<Dictionary>(colors_, name);
    if (!variants)
        return std::nullopt;
    return parseColor(textOf(*variants, variantOf(appearance)));
}

}
