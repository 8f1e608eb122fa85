#pragma once

#include "filter/SystemSettings.h"

#include <optional>
#include <string>
#include <string_view>

namespace brevanta {

// What the running system says. Needs no application object; main thread only.

SystemVersion systemVersion();

// Whether another process than this one runs from a bundle with this identifier (documentation page
// NSRunningApplication). Of this login's applications alone; nothing in a login that has none, over ssh for instance.
std::optional<bool> isRunningElsewhere(const std::string& bundleIdentifier);

// Whether the bytes are a property list whose top level is a dictionary, as a domain of the user defaults is stored.
bool isDomainOfDefaults(std::string_view bytes);

}
