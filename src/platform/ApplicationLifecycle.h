#pragma once

#include "platform/Url.h"

namespace brevanta {

// Regular: Dock icon and main menu. Accessory: neither, only a status item and windows.
enum class ActivationPolicy { regular, accessory };

enum class TerminationDecision { now, later };

// What the application object tells its delegate, on the main thread.
class ApplicationObserver {
public:
    virtual ~ApplicationObserver() = default;

    // Before the first event is handled: a link that started the application arrives after this and before the next.
    virtual void applicationWillFinishLaunching() = 0;

    // Once, when the loop runs.
    virtual void applicationDidFinishLaunching() = 0;

    // A link of the application's own scheme was opened, by whatever means.
    virtual void applicationDidOpenUrl(const Url& url) = 0;

    // The application has become the one that the user works with.
    virtual void applicationDidBecomeActive() = 0;

    // The machine has come out of its sleep.
    virtual void systemDidWake() = 0;

    // Somebody asked the application to quit. After `later`, the host goes on running until `answerTermination`.
    [[nodiscard]] virtual TerminationDecision applicationShouldTerminate() = 0;

    // The user opened the running application once more: Dock icon, Finder, or a second start.
    virtual void applicationShouldReopen() = 0;

    // The last call: the process ends after it returns, with or without destroying what the composition root holds.
    virtual void applicationWillTerminate() = 0;
};

enum class TerminationAnswer { proceed, cancel };

// The application object of the system. Main thread only.
class ApplicationLifecycle {
public:
    virtual ~ApplicationLifecycle() = default;

    virtual void setActivationPolicy(ActivationPolicy policy) = 0;

    // Brings the application in front of the others.
    virtual void activate() = 0;

    // Asks to quit, as the menu's Quit does: the observer's `applicationShouldTerminate` decides, and is called from
    // inside this call. With `now`, the loop ends soon after this call returns and the process exits with status 0.
    virtual void terminate() = 0;

    // Answers a termination that was put off; ignored when none is waiting.
    virtual void answerTermination(TerminationAnswer answer) = 0;
};

}
