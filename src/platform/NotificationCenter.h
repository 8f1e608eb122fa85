#pragma once

#include <expected>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace brevanta {

// What a notification carries unseen, for the click on it.
using NotificationUserInfo = std::map<std::string, std::string>;

struct Notification {
    std::string identifier; // A later notification with the same identifier takes this one's place.
    std::string title;
    std::string body; // Plain text; the adapter escapes what its service would read as markup.
    std::optional<std::string> sound {}; // A file's name without a folder; nothing for the system's own sound.
    NotificationUserInfo userInfo {};

    bool operator==(const Notification&) const = default;
};

// The user clicked a notification of this application.
struct NotificationResponse {
    std::string identifier;
    NotificationUserInfo userInfo;

    bool operator==(const NotificationResponse&) const = default;
};

struct NotificationError {
    std::string message;

    bool operator==(const NotificationError&) const = default;
};

// Whether the user lets the application notify.
enum class NotificationAuthorization { notDetermined, denied, authorized, provisional };

struct NotificationAuthorizationAnswer {
    NotificationAuthorization authorization { NotificationAuthorization::notDetermined };
    std::string error {}; // In the system's words; empty when it gives no reason.

    bool operator==(const NotificationAuthorizationAnswer&) const = default;
};

// The system's notifications. Main thread only.
class NotificationCenter {
public:
    virtual ~NotificationCenter() = default;

    // Delivers the notification at once. `onEnd` is called exactly once on the main thread, after this call returned,
    // unless the center is destroyed first.
    virtual void add(
        const Notification& notification, std::function<void(std::expected<void, NotificationError>)> onEnd)
        = 0;

    // Both answer once on the main thread, after the call has returned, unless the center is destroyed first. A system
    // may also leave the second one without an answer.
    // The second asks the user, once in the life of an installation; later calls answer what was decided.
    virtual void getAuthorization(std::function<void(NotificationAuthorization)> onEnd) = 0;
    virtual void requestAuthorization(std::function<void(NotificationAuthorizationAnswer)> onEnd) = 0;

    // Takes delivered notifications off the screen and out of the list; unknown identifiers are ignored.
    virtual void removeDelivered(const std::vector<std::string>& identifiers) = 0;

    // Called on the main thread for each click, never from inside a call of this class. Clicks that came while there
    // was no handler, such as the one that started the application, reach the next handler in their order; an empty
    // function takes the handler away.
    virtual void setResponseHandler(std::function<void(const NotificationResponse&)> handler) = 0;
};

}
