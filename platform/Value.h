// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Date.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace platform {

class Value;

using Array = std::vector<Value>;
using Dictionary = std::map<std::string, Value, std::less<>>;

/// A value of a property list: text, integer, real, boolean, date, array or dictionary.
class Value {
public:
    Value(std::string text)
        : held_(std::move(text))
    {
    }
    Value(std::string_view text)
        : held_(std::string(text))
    {
    }
    Value(char const* text)
        : held_(std::string(text))
    {
    }
    Value(std::int64_t integer)
        : held_(integer)
    {
    }
    Value(int integer)
        : held_(std::int64_t { integer })
    {
    }
    Value(double real)
        : held_(real)
    {
    }
    Value(bool boolean)
        : held_(boolean)
    {
    }
    Value(Date date)
        : held_(date)
    {
    }
    Value(Array array)
        : held_(std::move(array))
    {
    }
    Value(Dictionary dictionary)
        : held_(std::move(dictionary))
    {
    }

    /// The held value if it has this type, else null.
    template <typename T> T const* as() const { return std::get_if<T>(&held_); }

    template <typename Visitor> decltype(auto) visit(Visitor&& visitor) const
    {
        return std::visit(std::forward<Visitor>(visitor), held_);
    }

    bool operator==(Value const&) const = default;

private:
    std::variant<std::string, std::int64_t, double, bool, Date, Array, Dictionary> held_;
};

/// The entry with that name if it has this type, else null.
template <typename T> T const* entry(Dictionary const& dictionary, std::string_view key)
{
    auto const found = dictionary.find(key);
    return found == dictionary.end() ? nullptr : found->second.template as<T>();
}

}
