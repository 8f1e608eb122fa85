#include "web/BridgeMessage.h"

namespace brevanta {

std::optional<std::string> BridgeMessage::text(const char* key) const
{
    const auto found = body.find(key);
    return found != body.end() && found->is_string() ? std::optional(found->get<std::string>()) : std::nullopt;
}

std::expected<BridgeMessage, BridgeMessageError> readBridgeMessage(const std::string& body)
{
    if (body.size() > longestBridgeMessage)
        return std::unexpected(BridgeMessageError::tooLong);
    auto json = nlohmann::json::parse(body, nullptr, false);
    if (json.is_discarded())
        return std::unexpected(BridgeMessageError::notJson);
    if (!json.is_object())
        return std::unexpected(BridgeMessageError::notAnObject);
    BridgeMessage message { .type = {}, .body = std::move(json) };
    const auto type = message.text("type");
    if (!type)
        return std::unexpected(BridgeMessageError::noType);
    message.type = *type;
    return message;
}

}
