// SPDX-License-Identifier: MIT
#include "platform/Locale.h"

#include "platform/LocaleRules.h"
#include "platform/Split.h"

#include <cstdlib>
#include <string_view>

namespace platform {

namespace {

std::string_view environment(char const* name)
{
    // This is safe because it runs before any other thread starts.
    char const* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe)
    return value ? value : "";
}

std::string_view languageOf(std::string_view locale) { return locale.substr(0, locale.find_first_of("_.@")); }

}

std::string userLocale(char const* category)
{
    for (char const* const name : { "LC_ALL", category, "LANG" }) {
        std::string_view const value = environment(name);
        if (value.empty())
            continue;
        std::string const locale(value.substr(0, value.find_first_of(".@")));
        bool const usable = locale != "C" && locale != "POSIX" && localeRules().isKnown(locale);
        return usable ? locale : "en_US";
    }
    return "en_US";
}

std::vector<std::string> userLanguages()
{
    std::vector<std::string> languages;
    for (auto const preferred : split(environment("LANGUAGE"), ':'))
        languages.emplace_back(languageOf(preferred));
    languages.emplace_back(languageOf(userLocale("LC_MESSAGES")));
    return languages;
}

bool isRightToLeft(std::string const& language) { return localeRules().isRightToLeft(language); }

}
