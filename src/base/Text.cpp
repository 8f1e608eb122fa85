#include "base/Text.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace brevanta {

std::string formatFixed(double number, int decimals)
{
    std::array<char, 400> digits {}; // The largest double has 309 digits before its point.
    const auto [end, error]
        = std::to_chars(digits.data(), digits.data() + digits.size(), number, std::chars_format::fixed, decimals);
    return error == std::errc {} ? std::string(digits.data(), end) : std::string {};
}

std::string singleLine(std::string_view text)
{
    std::string line(text);
    std::ranges::replace_if(line, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, ' ');
    return line;
}

std::string lowerCased(std::string_view text)
{
    std::string lower(text);
    std::ranges::transform(
        lower, lower.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return lower;
}

std::string clipped(std::string_view text, std::size_t maxBytes)
{
    if (text.size() <= maxBytes)
        return std::string(text);
    auto end = maxBytes;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
        --end;
    return std::string(text.substr(0, end)) + "…";
}

std::string commaSeparated(std::span<const std::string> names)
{
    std::string text;
    for (const auto& name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text;
}

bool isBlank(std::string_view utf8)
{
    static constexpr auto spaces = std::to_array<std::string_view>({ "\t", "\n", "\v", "\f", "\r", " ", "\u0085",
        "\u00A0", "\u1680", "\u2000", "\u2001", "\u2002", "\u2003", "\u2004", "\u2005", "\u2006", "\u2007", "\u2008",
        "\u2009", "\u200A", "\u2028", "\u2029", "\u202F", "\u205F", "\u3000" });
    while (!utf8.empty()) {
        const auto space = std::ranges::find_if(spaces, [utf8](auto candidate) { return utf8.starts_with(candidate); });
        if (space == spaces.end())
            return false;
        utf8.remove_prefix(space->size());
    }
    return true;
}

std::size_t codePointCount(std::string_view utf8)
{
    return static_cast<std::size_t>(
        std::ranges::count_if(utf8, [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

}
