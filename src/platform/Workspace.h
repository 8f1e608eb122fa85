#pragma once

#include <functional>
#include <string>

namespace brevanta {

enum class OpenOutcome { opened, refused };

// The desktop around the application. Main thread only.
class Workspace {
public:
    virtual ~Workspace() = default;

    // Opens the URL with the application that the user has for it. `onEnd` is called exactly once on the main thread,
    // after this call has returned; an empty or malformed URL is refused.
    virtual void openUrl(const std::string& url, std::function<void(OpenOutcome)> onEnd) = 0;

    // Shows the folder at this absolute path in the file browser. As `openUrl`; a path that is no folder is refused.
    virtual void openFolder(const std::string& path, std::function<void(OpenOutcome)> onEnd) = 0;
};

}
