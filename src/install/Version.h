#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace brevanta {

// A version as numbers, the first of which weighs most; ordered number by number, a missing one counting as 0. A pure
// value.
class Version {
public:
    // Digits separated by dots, ASCII white space around them aside. Nothing for a text with anything else in it, with
    // an empty part, or with a part above the largest 64-bit signed integer.
    [[nodiscard]] static std::optional<Version> parse(std::string_view text);

    bool operator==(const Version&) const = default;
    std::strong_ordering operator<=>(const Version&) const = default;

private:
    std::vector<std::int64_t> m_parts; // Without zeros at its end: 1.2 and 1.2.0 are one version.
};

// The text without the ASCII white space and line ends around it.
[[nodiscard]] std::string_view withoutSurroundingSpace(std::string_view text);

}
