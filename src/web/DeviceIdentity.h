#pragma once

#include <functional>
#include <string>

namespace brevanta {

class UserDefaults;

// The identifier by which the service knows this computer: a UUID's text, made at the first start and kept in the user
// defaults. What is stored there and is no UUID is replaced.
[[nodiscard]] std::string persistentDeviceIdentifier(
    UserDefaults& defaults, const std::function<std::string()>& newUuid);

}
