#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace brevanta {

// Names one attempt to load the page. Generations start at 1 and only grow.
using ShellGeneration = std::int64_t;

enum class ShellLoadPhase {
    blank, // No page: at the start, after a failure, after the content process died.
    provisional, // A navigation is under way and nothing has been committed for it yet.
    committed, // The page has begun to render.
    usable, // The navigation has finished.
};

enum class ShellPlaceholderState { loading, retrying, unreachable };

// Who asked for a recovery; for the log.
enum class ShellRecoverSource { authWatchdog };

struct ShellLoadCommand {
    // Load the app URL afresh, given up after `timeout` seconds.
    struct Load {
        ShellGeneration generation;
        double timeout;
        bool operator==(const Load&) const = default;
    };
    // Reload the current page, bypassing caches.
    struct ReloadFromOrigin {
        ShellGeneration generation;
        bool operator==(const ReloadFromOrigin&) const = default;
    };
    // Take the navigation that the page itself started under this generation.
    struct Adopt {
        ShellGeneration generation;
        bool operator==(const Adopt&) const = default;
    };
    // Arm the single retry timer.
    struct ScheduleRetry {
        ShellGeneration generation;
        double after; // Seconds.
        bool operator==(const ScheduleRetry&) const = default;
    };
    struct ShowPlaceholder {
        ShellPlaceholderState state;
        bool operator==(const ShowPlaceholder&) const = default;
    };
    struct CancelRetry {
        bool operator==(const CancelRetry&) const = default;
    };
    struct HidePlaceholder {
        bool operator==(const HidePlaceholder&) const = default;
    };

    std::variant<Load, ReloadFromOrigin, Adopt, ScheduleRetry, ShowPlaceholder, CancelRetry, HidePlaceholder> what;

    bool operator==(const ShellLoadCommand&) const = default;
};

struct ShellLoadEvent {
    // The window and the web view are ready to load.
    struct Prepare { };
    // The launch sequence allows the first load.
    struct Release { };
    struct DidCommit {
        ShellGeneration generation;
    };
    struct DidFinish {
        ShellGeneration generation;
    };
    // Domain and code are those of Foundation's errors: NSURLErrorDomain.
    struct DidFail {
        ShellGeneration generation;
        std::string domain;
        std::int64_t code;
    };
    struct RetryTimerFired {
        ShellGeneration generation;
    };
    struct ContentProcessTerminated {
        double uptime; // Seconds of system uptime.
    };
    // A navigation that nobody here asked for has begun.
    struct ForeignNavigationStarted { };
    struct UserRetry { };
    struct Recover {
        ShellRecoverSource source;
    };

    std::variant<Prepare, Release, DidCommit, DidFinish, DidFail, RetryTimerFired, ContentProcessTerminated,
        ForeignNavigationStarted, UserRetry, Recover>
        what;
};

// Decides whether the page is usable, loading, failing or gone, and what is done about it. A pure value: callbacks and
// timers that belong to an older generation change nothing and return nothing.
class ShellLoadReducer {
public:
    [[nodiscard]] std::vector<ShellLoadCommand> reduce(const ShellLoadEvent& event);

    [[nodiscard]] bool isPrepared() const { return m_prepared; }
    [[nodiscard]] bool isReleased() const { return m_released; }
    [[nodiscard]] ShellLoadPhase phase() const { return m_phase; }
    [[nodiscard]] std::optional<ShellGeneration> inFlight() const { return m_inFlight; }
    [[nodiscard]] std::optional<ShellGeneration> retryArmed() const { return m_retryArmed; }
    [[nodiscard]] std::int64_t attempt() const { return m_attempt; }
    [[nodiscard]] ShellGeneration nextGeneration() const { return m_nextGeneration; }
    [[nodiscard]] std::optional<ShellLoadPhase> priorPhase() const { return m_priorPhase; }

    bool operator==(const ShellLoadReducer&) const = default;

private:
    using Commands = std::vector<ShellLoadCommand>;

    Commands on(const ShellLoadEvent::Prepare&);
    Commands on(const ShellLoadEvent::Release&);
    Commands on(const ShellLoadEvent::DidCommit& event);
    Commands on(const ShellLoadEvent::DidFinish& event);
    Commands on(const ShellLoadEvent::DidFail& event);
    Commands on(const ShellLoadEvent::RetryTimerFired& event);
    Commands on(const ShellLoadEvent::ContentProcessTerminated& event);
    Commands on(const ShellLoadEvent::ForeignNavigationStarted&);
    Commands on(const ShellLoadEvent::UserRetry&);
    Commands on(const ShellLoadEvent::Recover&);

    [[nodiscard]] Commands firstLoadIfAllowed();
    [[nodiscard]] Commands reload();
    [[nodiscard]] Commands retryLater();
    [[nodiscard]] ShellGeneration takeGeneration();
    void startNavigation(ShellGeneration generation, ShellLoadPhase priorPhase);
    [[nodiscard]] bool isShowing() const;
    [[nodiscard]] bool wasShowing() const;

    bool m_prepared { false };
    bool m_released { false };
    ShellLoadPhase m_phase { ShellLoadPhase::blank };
    std::optional<ShellGeneration> m_inFlight; // The navigation now awaited.
    std::optional<ShellGeneration> m_retryArmed; // The armed retry timer.
    std::int64_t m_attempt { 0 }; // Automatic retries in a row since the last success or user action.
    ShellGeneration m_nextGeneration { 1 };
    std::optional<double> m_lastTermination; // System uptime, seconds.
    std::optional<ShellLoadPhase>
        m_priorPhase; // What is fallen back to when the navigation in flight comes to nothing.
};

// For the log: "provisional", and "[load(2, 30.0), hidePlaceholder]".
[[nodiscard]] std::string_view describe(ShellLoadPhase phase);
[[nodiscard]] std::string describe(const std::vector<ShellLoadCommand>& commands);

}
