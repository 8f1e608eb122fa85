#pragma once

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace brevanta {

// An enumerator and its name in the files and commands of the stand-in system.
template <typename Enum> struct NamedValue {
    std::string_view name;
    Enum value;
};

template <typename Enum, std::size_t count>
[[nodiscard]] std::optional<Enum> valueNamed(const std::array<NamedValue<Enum>, count>& values, std::string_view name)
{
    const auto found = std::ranges::find(values, name, &NamedValue<Enum>::name);
    return found != values.end() ? std::optional(found->value) : std::nullopt;
}

// Every enumerator stands in its array.
template <typename Enum, std::size_t count>
[[nodiscard]] std::string_view nameOf(const std::array<NamedValue<Enum>, count>& values, Enum value)
{
    return std::ranges::find(values, value, &NamedValue<Enum>::value)->name;
}

}
