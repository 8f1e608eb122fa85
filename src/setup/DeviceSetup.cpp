#include "setup/DeviceSetup.h"

#include <nlohmann/json.hpp>

namespace brevanta {

SetupActionOutcome NoDeviceSetup::perform(std::string_view) { return SetupActionOutcome::unknown; }

Json NoDeviceSetup::state() const { return { { "schema", 1 }, { "actions", Json::array() }, { "running", nullptr } }; }

}
