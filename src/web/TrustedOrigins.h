#pragma once

#include "platform/Url.h"
#include "platform/WebView.h"

#include <string>
#include <string_view>
#include <vector>

namespace brevanta {

// Which pages may talk to the client, and which may be shown at all. Ports and paths do not matter. A pure value.
class TrustedOrigins {
public:
    // The hosts of the service, whose pages may use the bridge, and those of the sign-in pages, which may only be
    // navigated to; in lower case.
    TrustedOrigins(std::vector<std::string> trustedHosts, std::vector<std::string> signInHosts);

    // https, and one of the service's hosts; capitals and one trailing dot make no difference.
    [[nodiscard]] bool isBridgeTrusted(std::string_view scheme, std::string_view host) const;
    [[nodiscard]] bool isBridgeTrusted(const Url& url) const { return isBridgeTrusted(url.scheme, url.host); }

    // The only frame that is heard, and that the user is asked for.
    [[nodiscard]] bool isTrustedMainFrame(const FrameFacts& frame) const
    {
        return frame.isMainFrame && isBridgeTrusted(frame.protocol, frame.host);
    }

    // Bridge-trusted, or https and one of the sign-in hosts.
    [[nodiscard]] bool isNavigationAllowed(const Url& url) const;

private:
    std::vector<std::string> m_trustedHosts;
    std::vector<std::string> m_signInHosts;
};

}
