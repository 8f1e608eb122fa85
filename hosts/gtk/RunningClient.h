#pragma once

#include <functional>
#include <optional>
#include <string>

namespace brevanta {

class MainLoop;

// Whether a process has this name on the session bus, as the client does; nothing without a bus that answers. Starts no
// bus, unlike GLib's own way to one. `onEnd` is called once, from the main loop, within five seconds; the loop outlives
// that.
void findRunningClient(const std::string& busName, MainLoop& mainLoop, std::function<void(std::optional<bool>)> onEnd);

}
