#include "base/Base64.h"

#include <algorithm>

namespace brevanta {

namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t groupSize = 3; // Bytes that become four letters.

}

std::string base64(std::span<const std::uint8_t> bytes)
{
    std::string text;
    text.reserve((bytes.size() + groupSize - 1) / groupSize * 4);
    while (!bytes.empty()) {
        const auto group = bytes.first(std::min(bytes.size(), groupSize));
        std::uint32_t bits = 0;
        for (std::size_t index = 0; index < groupSize; ++index)
            bits = (bits << 8U) | (index < group.size() ? group[index] : 0U);
        for (std::size_t letter = 0; letter < 4; ++letter)
            text.push_back(letter <= group.size() ? alphabet[(bits >> (18U - 6U * letter)) & 0x3FU] : '=');
        bytes = bytes.subspan(group.size());
    }
    return text;
}

std::optional<std::vector<std::uint8_t>> decodedBase64(std::string_view text)
{
    if (text.size() % 4)
        return std::nullopt;
    const auto padding = text.ends_with("==") ? std::size_t { 2 } : static_cast<std::size_t>(text.ends_with('='));
    const auto size = text.size() / 4 * groupSize - padding;
    std::vector<std::uint8_t> bytes;
    bytes.reserve(size);
    std::uint32_t bits = 0;
    unsigned count = 0; // Of bits that are no part of a byte yet.
    for (const char letter : text.substr(0, text.size() - padding)) {
        const auto value = alphabet.find(letter);
        if (value == std::string_view::npos)
            return std::nullopt;
        bits = (bits << 6U) | static_cast<std::uint32_t>(value);
        count += 6;
        if (count < 8)
            continue;
        count -= 8;
        bytes.push_back(static_cast<std::uint8_t>(bits >> count));
    }
    return bytes;
}

}
