#include "web/DeviceIdentity.h"

#include "platform/UserDefaults.h"
#include "setup/DeviceSetupLinkInbox.h"

namespace brevanta {

namespace {

constexpr auto key = "brevantaDeviceIdentifier";

}

std::string persistentDeviceIdentifier(UserDefaults& defaults, const std::function<std::string()>& newUuid)
{
    const auto stored = defaults.get(key);
    if (const auto* const text = stored ? std::get_if<std::string>(&*stored) : nullptr; text && isUuid(*text))
        return *text;
    auto identifier = newUuid();
    defaults.set(key, identifier);
    return identifier;
}

}
