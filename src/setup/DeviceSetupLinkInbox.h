#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace brevanta {

// The one navigation that a setup link asked for and the page has not confirmed yet. A newer link takes an older one's
// place; after two minutes it is forgotten. Times are seconds of one monotonic clock. Nothing is stored.
class DeviceSetupLinkInbox {
public:
    // `token` is a UUID's text.
    void put(std::string token, double now);

    // The token of the navigation that waits, which goes on waiting; nothing when there is none or it is too old.
    [[nodiscard]] std::optional<std::string> take(double now);

    // Ends the navigation when the token is its own, or when it is too old. A token that is no UUID changes nothing.
    void acknowledge(std::string_view token, double now);

private:
    struct Pending {
        std::string token;
        double arrivedAt;
    };

    void forgetIfOld(double now);

    std::optional<Pending> m_pending;
};

// Whether the text is a UUID in its usual form of 8-4-4-4-12 hexadecimal digits: RFC 9562, section 4.
[[nodiscard]] bool isUuid(std::string_view text);

}
