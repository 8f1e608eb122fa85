#pragma once

#include <functional>

namespace brevanta {

enum class RelaunchDecision { now, later };

// Looks for newer versions of the application, offers them to the user and puts them in place. Where they come from and
// whose signature they bear stands in the application's information dictionary. Main thread only.
class Updater {
public:
    // Asked when an update is ready and the application is to end and start anew. After `later`, `relaunch` is called
    // once, when that may happen; after `now` it is not called.
    using RelaunchHandler = std::function<RelaunchDecision(std::function<void()> relaunch)>;

    virtual ~Updater() = default;

    // Begins to look for updates by itself, if it may. Called once, before any other method, and only with a usable
    // feed and key. The handler is called from the main loop, never from inside a method of this class.
    virtual void start(RelaunchHandler handler) = 0;

    // Whether it looks for updates by itself; kept from one start of the application to the next.
    [[nodiscard]] virtual bool automaticChecks() const = 0;
    virtual void setAutomaticChecks(bool on) = 0;

    // Looks for an update now, and shows the user what came of it.
    virtual void checkNow() = 0;
};

}
