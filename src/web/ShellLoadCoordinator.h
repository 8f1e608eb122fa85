#pragma once

#include "base/LifeToken.h"
#include "platform/Placeholder.h"
#include "platform/WebView.h"
#include "web/ShellLoadReducer.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace brevanta {

class Clock;
class MainLoop;
class SystemLog;
class Timer;

// Carries out what ShellLoadReducer decides: turns the web view's callbacks, timers and the user's actions into events,
// and commands into loads, timers and the placeholder. It never reports an error to a caller. Main thread only.
class ShellLoadCoordinator {
public:
    struct Dependencies {
        WebView& webView;
        Placeholder& placeholder;
        MainLoop& mainLoop;
        Clock& clock;
        SystemLog& log;
        std::function<std::optional<std::string>()> appUrl; // Asked at each load.
        std::function<void()> willLoad; // Called before the web view is asked for a load or a reload.
    };

    // Shows that the application is loading.
    explicit ShellLoadCoordinator(Dependencies dependencies);
    ~ShellLoadCoordinator();
    ShellLoadCoordinator(const ShellLoadCoordinator&) = delete;
    ShellLoadCoordinator& operator=(const ShellLoadCoordinator&) = delete;

    // The one way in. `reason` goes to the log when the event leads to anything.
    std::vector<ShellLoadCommand> dispatch(const ShellLoadEvent& event, const std::string& reason);

    void prepare();
    // Ignored once it has happened.
    void release(const std::string& reason);
    void userRetry();
    // The user has asked for the window: a page that is missing is tried again, one that is there is kept.
    void windowOpened();

    enum class Recovery { started, deferred };
    Recovery recover(ShellRecoverSource source);

    // The web view's callbacks. A navigation may be null when the engine named none.
    void didStartProvisional(const WebNavigation& navigation);
    void didCommit(const WebNavigation& navigation);
    void didFinish(const WebNavigation& navigation);
    void didFail(const WebNavigation& navigation, const WebError& error);
    void contentProcessDidTerminate();

    // Whether the navigation in flight is a load or reload of this client's own, rather than one that the page began.
    [[nodiscard]] bool awaitsOwnNavigation() const;

private:
    enum class Origin { own, adopted };
    struct Navigation {
        ShellGeneration generation;
        WebNavigation navigation;
        Origin origin;
    };
    struct Execution;

    [[nodiscard]] std::optional<ShellGeneration> generationOf(const WebNavigation& navigation) const;
    void forget(ShellGeneration generation);
    void remember(ShellGeneration generation, const WebNavigation& navigation, const char* failure);
    void failLater(ShellGeneration generation, const std::string& message);
    void load(ShellGeneration generation, double timeout);
    void scheduleRetry(ShellGeneration generation, double after);

    Dependencies m_dependencies;
    ShellLoadReducer m_reducer;
    std::vector<Navigation> m_navigations; // Begun or adopted, and not yet at their end.
    WebNavigation m_adopting; // Set only while a navigation is being adopted.
    std::unique_ptr<Timer> m_retryTimer;
    LifeToken m_life;
};

// What the placeholder shows in each state.
[[nodiscard]] PlaceholderContent placeholderContent(ShellPlaceholderState state);

}
