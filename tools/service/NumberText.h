#pragma once

#include <charconv>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string_view>

namespace brevanta::service {

// The whole text as a whole number from 0 to `largest`.
[[nodiscard]] inline std::optional<std::size_t> parseCount(std::string_view text, std::size_t largest)
{
    std::size_t value = 0;
    const auto end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end || value > largest)
        return std::nullopt;
    return value;
}

// The whole text as a finite number.
[[nodiscard]] inline std::optional<double> parseNumber(std::string_view text)
{
    double value = 0;
    const auto end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end || !std::isfinite(value))
        return std::nullopt;
    return value;
}

}
