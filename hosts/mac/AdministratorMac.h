#pragma once

#include "mac/CompletionTable.h"
#include "platform/Administrator.h"

#include <string>

namespace brevanta {

class Executor;

// AppleScript's "do shell script" with administrator privileges: Technical Note TN2065. OSAKit (documentation pages
// OSAScript, OSALanguage) runs it, since NSAppleScript belongs to the main thread.
class AdministratorMac final : public Administrator {
public:
    // The scripts run on `queue`, a serial one of their own that waits for the user meanwhile. Both outlive this
    // object.
    AdministratorMac(MainLoop& mainLoop, Executor& queue);

    void run(const std::string& script, const std::string& prompt,
        std::function<void(std::expected<std::string, AdministratorError>)> onEnd) override;

private:
    Executor& m_queue;
    CompletionTable<std::expected<std::string, AdministratorError>> m_completions;
};

}
