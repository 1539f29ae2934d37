// SPDX-License-Identifier: MIT
#include "platform/PropertyList.h"

#include "platform/Trimmed.h"
#include "platform/Utf8.h"
#include "platform/XmlParser.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <utility>

namespace platform {

namespace {

constexpr std::size_t maximumDepth = 64;

template <typename Number> std::optional<Number> number(std::string_view text)
{
    Number result {};
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), result);
    if (error != std::errc {} || end != text.data() + text.size())
        return std::nullopt;
    return result;
}

// Accepts only digits; from_chars would take "-1" for a two-digit number.
std::optional<int> digits(std::string_view text)
{
    bool const onlyDigits = std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
    return onlyDigits ? number<int>(text) : std::nullopt;
}

// Parses "2026-07-01T12:30:00Z", the only date format in property lists.
std::optional<Date> date(std::string_view text)
{
    constexpr std::string_view form = "0000-00-00T00:00:00Z";
    auto const fits = [](char character, char expected) { return expected == '0' || character == expected; };
    if (text.size() != form.size() || !std::ranges::equal(text, form, fits))
        return std::nullopt;

    auto const year = digits(text.substr(0, 4));
    auto const month = digits(text.substr(5, 2));
    auto const day = digits(text.substr(8, 2));
    auto const hour = digits(text.substr(11, 2));
    auto const minute = digits(text.substr(14, 2));
    auto const second = digits(text.substr(17, 2));
    if (!year || !month || !day || !hour || !minute || !second || *hour > 23 || *minute > 59 || *second > 59)
        return std::nullopt;
    auto const calendarDay = std::chrono::year(*year) / *month / *day;
    if (!calendarDay.ok())
        return std::nullopt;

    std::chrono::sys_seconds const moment = std::chrono::sys_days(calendarDay) + std::chrono::hours(*hour)
        + std::chrono::minutes(*minute) + std::chrono::seconds(*second);
    if (moment < std::chrono::ceil<std::chrono::seconds>(Date::min())
        || moment > std::chrono::floor<std::chrono::seconds>(Date::max()))
        return std::nullopt;
    return Date(moment);
}

template <typename T> std::optional<Value> valueIfAny(std::optional<T> held)
{
    return held ? std::optional<Value>(*held) : std::nullopt;
}

// The value of an element that contains only text.
std::optional<Value> leafValue(std::string_view element, std::string const& text)
{
    if (element == "string")
        return Value(text);
    if (element == "integer")
        return valueIfAny(number<std::int64_t>(trimmed(text)));
    if (element == "real") {
        std::optional<double> const real = number<double>(trimmed(text));
        return real && std::isfinite(*real) ? std::optional<Value>(*real) : std::nullopt;
    }
    if (element == "date")
        return valueIfAny(date(trimmed(text)));
    return text.empty() ? std::optional<Value>(element == "true") : std::nullopt;
}

class Reader final : public XmlParserDelegate {
public:
    std::optional<Dictionary> result()
    {
        if (refused_ || !root_)
            return std::nullopt;
        return std::move(*root_);
    }

    void didStartElement(std::string_view name) override
    {
        if (!refused_ && !start(name))
            refused_ = true;
    }

    void didEndElement(std::string_view name) override
    {
        if (!refused_ && !end(name))
            refused_ = true;
    }

    void foundCharacters(std::string_view characters) override
    {
        if (!leaf_.empty())
            text_ += characters;
        else if (!trimmed(characters).empty())
            refused_ = true;
    }

    void foundCData(std::string_view block) override { foundCharacters(block); }

private:
    // A dictionary or an array that is being read.
    struct Level {
        bool isDictionary;
        Dictionary dictionary;
        Array array;
        std::optional<std::string> key;
    };

    bool start(std::string_view name)
    {
        constexpr std::array<std::string_view, 6> leaves { "string", "integer", "real", "true", "false", "date" };
        if (!leaf_.empty())
            return false;
        if (!insideList_) {
            insideList_ = true;
            return name == "plist";
        }
        if (name == "key") {
            leaf_ = name;
            return !levels_.empty() && levels_.back().isDictionary && !levels_.back().key;
        }
        if (name == "dict" || name == "array") {
            bool const expected = levels_.empty() ? !root_ && name == "dict" : expectsValue();
            levels_.push_back({ name == "dict", {}, {}, {} });
            return expected && levels_.size() <= maximumDepth;
        }
        leaf_ = name;
        return std::ranges::find(leaves, name) != leaves.end() && !levels_.empty() && expectsValue();
    }

    bool end(std::string_view name)
    {
        std::string const text = std::exchange(text_, {});
        if (std::exchange(leaf_, {}) == "key") {
            levels_.back().key = text;
            return true;
        }
        if (name == "plist")
            return true;
        if (name == "dict" || name == "array")
            return endLevel();
        std::optional<Value> value = leafValue(name, text);
        if (!value)
            return false;
        add(std::move(*value));
        return true;
    }

    bool endLevel()
    {
        Level level = std::move(levels_.back());
        levels_.pop_back();
        if (level.key)
            return false;
        if (levels_.empty())
            root_ = std::move(level.dictionary);
        else if (level.isDictionary)
            add(std::move(level.dictionary));
        else
            add(std::move(level.array));
        return true;
    }

    bool expectsValue() const { return !levels_.back().isDictionary || levels_.back().key; }

    void add(Value value)
    {
        Level& level = levels_.back();
        if (level.isDictionary)
            level.dictionary.insert_or_assign(*std::exchange(level.key, std::nullopt), std::move(value));
        else
            level.array.push_back(std::move(value));
    }

    bool insideList_ = false;
    bool refused_ = false;
    std::string leaf_;
    std::string text_;
    std::vector<Level> levels_;
    std::optional<Dictionary> root_;
};

class Writer {
public:
    std::string write(Dictionary const& dictionary)
    {
        written_ = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                   "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                   "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                   "<plist version=\"1.0\">\n";
        (*this)(dictionary);
        written_ += "</plist>\n";
        return std::move(written_);
    }

    void operator()(Dictionary const& dictionary)
    {
        if (dictionary.empty())
            return line("<dict/>");
        line("<dict>");
        ++depth_;
        for (auto const& [key, value] : dictionary) {
            line("<key>" + escaped(key) + "</key>");
            value.visit(*this);
        }
        --depth_;
        line("</dict>");
    }

    void operator()(Array const& array)
    {
        if (array.empty())
            return line("<array/>");
        line("<array>");
        ++depth_;
        for (Value const& value : array)
            value.visit(*this);
        --depth_;
        line("</array>");
    }

    void operator()(std::string const& text) { line("<string>" + escaped(text) + "</string>"); }
    void operator()(std::int64_t integer) { line("<integer>" + std::to_string(integer) + "</integer>"); }
    void operator()(bool boolean) { line(boolean ? "<true/>" : "<false/>"); }

    // No spelling of infinity is understood by every reader, so it is written as zero.
    void operator()(double real)
    {
        std::array<char, 32> digits {};
        auto const [end, error]
            = std::to_chars(digits.data(), digits.data() + digits.size(), std::isfinite(real) ? real : 0.0);
        line("<real>" + std::string(digits.data(), end) + "</real>");
    }

    void operator()(Date date)
    {
        auto const moment = std::chrono::time_point_cast<std::chrono::seconds>(date);
        auto const midnight = std::chrono::floor<std::chrono::days>(moment);
        std::chrono::year_month_day const day(midnight);
        std::chrono::hh_mm_ss const time(moment - midnight);
        std::array<char, 64> text {};
        std::snprintf(text.data(), text.size(), "<date>%04d-%02u-%02uT%02d:%02d:%02dZ</date>", int { day.year() },
            unsigned { day.month() }, unsigned { day.day() }, static_cast<int>(time.hours().count()),
            static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()));
        line(text.data());
    }

private:
    void line(std::string_view text)
    {
        written_.append(depth_, '\t');
        written_ += text;
        written_ += '\n';
    }

    static bool isXmlCharacter(std::int32_t character)
    {
        return character >= 0x20 ? character != 0xFFFE && character != 0xFFFF
                                 : character == '\t' || character == '\n' || character == '\r';
    }

    static std::string escaped(std::string_view text)
    {
        std::string result;
        for (std::size_t position = 0; position < text.size();) {
            std::size_t const start = position;
            std::int32_t const character = nextCodePoint(text, position);
            if (!isXmlCharacter(character))
                result += "\uFFFD";
            else if (character == '&')
                result += "&amp;";
            else if (character == '<')
                result += "&lt;";
            else if (character == '>')
                result += "&gt;";
            else if (character == '\r')
                result += "&#13;"; // A bare one would be read back as a line feed.
            else
                result += text.substr(start, position - start);
        }
        return result;
    }

    std::string written_;
    std::size_t depth_ = 0;
};

}

std::optional<Dictionary> readPropertyList(std::string_view bytes)
{
    Reader reader;
    return parseXml(bytes, reader) ? reader.result() : std::nullopt;
}

std::string writePropertyList(Dictionary const& dictionary) { return Writer().write(dictionary); }

}
