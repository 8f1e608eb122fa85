#pragma once

#include <expected>
#include <nlohmann/json.hpp>
#include <string>

namespace brevanta {

// What a page asked for: an object with the name of the request under "type".
struct BridgeMessage {
    std::string type;
    nlohmann::json body;

    // The text under a key; nothing when it is absent or no text.
    [[nodiscard]] std::optional<std::string> text(const char* key) const;
};

enum class BridgeMessageError { tooLong, notJson, notAnObject, noType };

// Bytes beyond this are not looked at. No request of the page comes near.
inline constexpr std::size_t longestBridgeMessage = 1U << 20U;

[[nodiscard]] std::expected<BridgeMessage, BridgeMessageError> readBridgeMessage(const std::string& body);

}
