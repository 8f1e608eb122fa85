#pragma once

#include "platform/NotificationCenter.h"

#include <optional>
#include <set>
#include <string>

namespace brevanta {

// What browsers do for a page and the client does not.
enum class MissingFeature { download, newWindow, prompt, untrustedDialog };

// What is known of the document that shows. The bridge owns the one instance, and empties it when another document
// commits. Main thread only.
struct DocumentMemory {
    bool isComplete { false }; // It has been loaded as far as it will be.
    // What the document was told last; empty when nothing.
    std::string lastRemovalKey;
    std::string lastDeviceSetupKey;
    std::optional<NotificationAuthorization> lastAuthorization;

    std::set<MissingFeature> missed; // What it wanted in vain; the log says each once.
};

}
