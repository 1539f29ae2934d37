// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Color.h"
#include "platform/Value.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace platform {

/// Returns a text with an argument in place of its first "%@" or "%i", or the text itself if it has neither.
std::string withArgument(std::string text, std::string_view argument);

/// The program's own resources: its identity, texts and colours. They are read once and never change.
class Bundle {
public:
    /// Reads the folder's Info.plist and the string table of the first language available, or the English one. Returns
    /// nothing if Info.plist is missing or lacks the identifier, the version or the provider's host.
    static std::optional<Bundle> open(std::filesystem::path const& folder, std::vector<std::string> const& languages);

    /// Returns the text of a key of Info.plist, or an empty text.
    std::string infoText(std::string_view key) const;
    std::string identifier() const { return infoText("CFBundleIdentifier"); }
    std::string shortVersion() const { return infoText("CFBundleShortVersionString"); }
    std::string providerHost() const { return infoText("ProviderHost"); }

    /// Returns the text of a localized-string key, or the key itself if it has no text.
    std::string localizedString(std::string_view key) const;

    /// Returns the text of a key with an argument in place of its first "%@" or "%i".
    std::string localizedString(std::string_view key, std::string_view argument) const;

    /// Returns the text of a label's key, followed by a space and a value.
    std::string labelledString(std::string_view labelKey, std::string_view value) const;

    /// Returns the text of a key for a count. The plural form that the language's rules give for the count is appended
    /// to the key ("_ONE", "_FEW", ...); without an entry for that form, the key's own text is used. Main thread only.
    std::string localizedString(std::string_view key, int count) const;

    std::string const& language() const { return language_; }

    /// Returns a named colour from Colors.plist for an appearance; both high-contrast appearances share one variant.
    std::optional<Color> namedColor(std::string_view name, Appearance appearance) const;

    std::filesystem::path const& folder() const { return folder_; }

private:
    void readStrings(std::vector<std::string> languages);

    std::filesystem::path folder_;
    Dictionary info_;
    Dictionary strings_;
    std::string language_;
    /// Avoids loading the plural rules, which is slow, for a table without plural forms.
    bool hasPluralForms_ = false;
    Dictionary colors_;
};

}
