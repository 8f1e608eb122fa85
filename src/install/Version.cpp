#include "install/Version.h"

#include <algorithm>
#include <charconv>

namespace brevanta {

namespace {

std::optional<std::int64_t> number(std::string_view digits)
{
    // A sign, which the conversion would accept, makes no version.
    if (digits.empty() || !std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; }))
        return std::nullopt;
    std::int64_t value = 0;
    const auto error = std::from_chars(digits.data(), digits.data() + digits.size(), value).ec;
    return error == std::errc {} ? std::optional(value) : std::nullopt;
}

}

std::string_view withoutSurroundingSpace(std::string_view text)
{
    constexpr std::string_view space = " \t\n\v\f\r";
    const auto first = text.find_first_not_of(space);
    return first == std::string_view::npos ? std::string_view {}
                                           : text.substr(first, text.find_last_not_of(space) - first + 1);
}

std::optional<Version> Version::parse(std::string_view text)
{
    Version version;
    auto rest = withoutSurroundingSpace(text);
    for (bool more = true; more;) {
        const auto dot = rest.find('.');
        const auto part = number(rest.substr(0, dot));
        if (!part)
            return std::nullopt;
        version.m_parts.push_back(*part);
        more = dot != std::string_view::npos;
        rest = more ? rest.substr(dot + 1) : std::string_view {};
    }
    while (!version.m_parts.empty() && version.m_parts.back() == 0)
        version.m_parts.pop_back();
    return version;
}

}
