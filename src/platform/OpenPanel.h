#pragma once

#include <functional>
#include <string>
#include <vector>

namespace brevanta {

enum class OpenPanelKind {
    applications, // One application bundle.
    files,
};

struct OpenPanelRequest {
    OpenPanelKind kind { OpenPanelKind::files };
    std::string title; // Empty for the system's own.
    std::string directory; // Absolute path in which it begins; empty for where the user was last.
    bool allowsMultiple { false };
    bool allowsDirectories { false };

    bool operator==(const OpenPanelRequest&) const = default;
};

// Lets the user choose files, as a sheet on the main window, or on its own when that is not shown. Main thread only;
// timers and posted work go on while a panel is open.
class OpenPanel {
public:
    virtual ~OpenPanel() = default;

    // Shows the panel and returns at once. `onEnd` is called exactly once on the main thread, after this call has
    // returned, unless the panel is destroyed first: with the absolute paths chosen, symbolic links and aliases
    // resolved, or with none when the user cancelled.
    virtual void present(const OpenPanelRequest& request, std::function<void(std::vector<std::string>)> onEnd) = 0;
};

}
