#include "filter/UnobservedHealth.h"

#include <nlohmann/json.hpp>

namespace brevanta {

std::optional<Json> UnobservedHealth::filterHealthReport() { return std::nullopt; }

void UnobservedHealth::pollSucceeded(const BlockingStatus&, double) { }

void UnobservedHealth::pollFailed(const DaemonFailure&, double) { }

ComponentLine UnobservedHealth::serviceLine() const { return { "Blocking Service: Checking…", ComponentAction::none }; }

ComponentLine UnobservedHealth::filterLine() const { return { "Content Filter: Checking…", ComponentAction::none }; }

}
