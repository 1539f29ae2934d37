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

/// The program's own resources: what it is, its texts and its colours. Read once; never changes.
class Bundle {
public:
    /// Reads the folder's Info.plist and the string table of the first of these languages that it has, else the
    /// English one. Nothing when Info.plist is missing or lacks the identifier, the version or the provider's host.
    static std::optional<Bundle> open(std::filesystem::path const& folder, std::vector<std::string> const& languages);

    /// The text of a key of Info.plist; empty when there is none.
    std::string infoText(std::string_view key) const;
    std::string identifier() const { return infoText("CFBundleIdentifier"); }
    std::string shortVersion() const { return infoText("CFBundleShortVersionString"); }
    std::string providerHost() const { return infoText("ProviderHost"); }

    /// The text of a localized-string key; a key without a text shows itself.
    std::string localizedString(std::string_view key) const;

    /// The text of a key for a count: that of the key with the plural form, which the rules of the texts' language give
    /// the count, behind it ("_ONE", "_FEW", ...); that of the key itself where the table has no such form. Main thread
    /// only.
    std::string localizedString(std::string_view key, int count) const;

    /// The language of the texts.
    std::string const& language() const { return language_; }

    /// A named colour's variant for an appearance, from Colors.plist; both of high contrast share one.
    std::optional<Color> namedColor(std::string_view name, Appearance appearance) const;

    std::filesystem::path const& folder() const { return folder_; }

private:
    void readStrings(std::vector<std::string> languages);

    std::filesystem::path folder_;
    Dictionary info_;
    Dictionary strings_;
    std::string language_;
    /// A table without plural forms needs no rules, which take time to read.
    bool hasPluralForms_ = false;
    Dictionary colors_;
};

}
