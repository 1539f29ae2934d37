// SPDX-License-Identifier: MIT
#include "desktop/AutostartEntry.h"

#include "platform/AtomicFile.h"
#include "platform/Trimmed.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <unistd.h>

namespace {

constexpr std::string_view header = "[Desktop Entry]\n";

// Finds the first value of a key in any group, since only one group of an autostart entry matters.
std::optional<std::string_view> valueOf(std::string_view entry, std::string_view key)
{
    while (!entry.empty()) {
        auto const line = entry.substr(0, entry.find('\n'));
        entry.remove_prefix(std::min(line.size() + 1, entry.size()));
        std::size_t const equals = line.find('=');
        if (equals != std::string_view::npos && platform::trimmed(line.substr(0, equals)) == key)
            return platform::trimmed(line.substr(equals + 1));
    }
    return std::nullopt;
}

bool isProgramThere(std::string_view entry)
{
    std::filesystem::path const program = valueOf(entry, "TryExec").value_or("");
    return !program.is_absolute() || ::access(program.c_str(), X_OK) == 0;
}

bool isActive(std::string_view entry)
{
    return valueOf(entry, "Hidden") != "true" && valueOf(entry, "X-GNOME-Autostart-enabled") != "false"
        && isProgramThere(entry);
}

std::string escaped(std::string_view text, std::string_view special, char escape = '\\')
{
    std::string result;
    for (char const character : text) {
        if (special.find(character) != std::string_view::npos)
            result += escape;
        result += character;
    }
    return result;
}

// Reading a value removes one layer of backslashes.
std::string value(std::string_view text) { return escaped(text, "\\"); }

// Arguments are quoted, and "%" begins a field code.
std::string argument(std::string const& text) { return '"' + escaped(escaped(text, "\"`$\\"), "%", '%') + '"'; }

}

AutostartEntry::AutostartEntry(
    Program program, std::filesystem::path const& userFolder, std::vector<std::filesystem::path> const& systemFolders)
    : program_(std::move(program))
    , userEntry_(userFolder / (program_.identifier + ".desktop"))
{
    for (auto const& folder : systemFolders)
        systemEntries_.push_back(folder / userEntry_.filename());
}

bool AutostartEntry::isEnabled() const
{
    auto const entry = platform::readFile(userEntry_);
    return entry ? isActive(*entry) : isEnabledBySystem();
}

bool AutostartEntry::isEnabledBySystem() const
{
    for (auto const& file : systemEntries_) {
        if (auto const entry = platform::readFile(file))
            return isActive(*entry);
    }
    return false;
}

bool AutostartEntry::setEnabled(bool enabled)
{
    if (enabled)
        return write(enabledEntry());
    if (isEnabledBySystem())
        return write(std::string(header).append("Hidden=true\n"));
    return remove();
}

bool AutostartEntry::write(std::string const& content) const
{
    return platform::makeFolder(userEntry_.parent_path()) && platform::writeFileAtomically(userEntry_, content);
}

bool AutostartEntry::remove() const
{
    std::error_code error;
    std::filesystem::remove(userEntry_, error);
    return !error;
}

std::string AutostartEntry::enabledEntry() const
{
    auto const file = program_.file.string();
    std::string entry(header);
    entry += "Type=Application\nName=" + value(program_.displayName);
    entry += "\nIcon=" + value(program_.identifier);
    // If the program is removed, TryExec makes the desktop ignore its entry.
    entry += "\nTryExec=" + value(file) + "\nExec=" + value(argument(file)) + '\n';
    return entry;
}
