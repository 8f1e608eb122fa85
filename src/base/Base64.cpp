#include "base/Base64.h"

#include <string_view>

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

}
