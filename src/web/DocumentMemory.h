#pragma once

#include "platform/NotificationCenter.h"

#include <optional>
#include <string>

namespace brevanta {

// What is known of the document that shows. The bridge owns the one instance, and empties it when another document
// commits. Main thread only.
struct DocumentMemory {
    bool isComplete { false }; // It has been loaded as far as it will be.
    // What the document was told last; empty when nothing.
    std::string lastRemovalKey;
    std::string lastDeviceSetupKey;
    std::optional<NotificationAuthorization> lastAuthorization;
};

}
