#pragma once

#include "platform/WebView.h"

#include <functional>

namespace brevanta {

class DeviceSetupLinkRouter;

// The page's way to the navigation that a setup link asked for: it takes it, and confirms it. Whoever else asks gets no
// answer and changes nothing. Main thread only.
class DeviceSetupLinkReplyHandler final : public ScriptReplyHandler {
public:
    using OriginRule = std::function<bool(std::string_view protocol, std::string_view host)>;

    DeviceSetupLinkReplyHandler(DeviceSetupLinkRouter& router, OriginRule isAllowedOrigin);

    [[nodiscard]] std::optional<std::string> replyTo(const ScriptMessage& message) override;

private:
    DeviceSetupLinkRouter& m_router;
    OriginRule m_isAllowedOrigin;
};

}
