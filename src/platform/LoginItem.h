#pragma once

#include <expected>
#include <functional>
#include <string>

namespace brevanta {

// Documentation page SMAppService.Status.
enum class LoginItemStatus {
    notRegistered,
    enabled,
    requiresApproval, // It was registered, and the user has switched it off.
    notFound, // The system does not know the application.
};

struct LoginItemError {
    std::string message; // In English, for the log.

    bool operator==(const LoginItemError&) const = default;
};

// The application among what the system starts when the user logs in. Main thread only. Each `onEnd` is called exactly
// once on the main thread, after the call has returned, unless the item is destroyed first.
class LoginItem {
public:
    virtual ~LoginItem() = default;

    virtual void readStatus(std::function<void(LoginItemStatus)> onEnd) = 0;

    // Makes the system start the application from the next login on. No error when it does so already.
    virtual void registerApplication(std::function<void(std::expected<void, LoginItemError>)> onEnd) = 0;
};

}
