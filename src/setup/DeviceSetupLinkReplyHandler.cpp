#include "setup/DeviceSetupLinkReplyHandler.h"

#include "setup/DeviceSetupLinkRouter.h"

#include <nlohmann/json.hpp>
#include <utility>

namespace brevanta {

namespace {

using Json = nlohmann::json;

constexpr std::size_t longestBody = 4096; // Both messages are a few dozen bytes.

std::optional<std::string> textAt(const Json& object, const char* key)
{
    const auto found = object.find(key);
    return found != object.end() && found->is_string() ? std::optional(found->get<std::string>()) : std::nullopt;
}

}

DeviceSetupLinkReplyHandler::DeviceSetupLinkReplyHandler(DeviceSetupLinkRouter& router, OriginRule isAllowedOrigin)
    : m_router(router)
    , m_isAllowedOrigin(std::move(isAllowedOrigin))
{
}

std::optional<std::string> DeviceSetupLinkReplyHandler::replyTo(const ScriptMessage& message)
{
    const auto& [isMainFrame, protocol, host] = message.frame;
    if (!isMainFrame || host.empty() || !m_isAllowedOrigin(protocol, host) || message.body.size() > longestBody)
        return std::nullopt;
    const auto body = Json::parse(message.body, nullptr, false);
    if (!body.is_object())
        return std::nullopt;
    const auto type = textAt(body, "type");
    if (type == "take_pending_navigation") {
        const auto token = m_router.take();
        return token ? std::optional(Json({ { "target", "device-setup" }, { "token", *token } }).dump()) : std::nullopt;
    }
    if (type == "ack_navigation") {
        if (const auto token = textAt(body, "token"))
            m_router.acknowledge(*token);
    }
    return std::nullopt;
}

}
