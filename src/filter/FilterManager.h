#pragma once

#include "base/LifeToken.h"
#include "filter/LaunchActivationOutcome.h"
#include "platform/FilterSystem.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace brevanta {

class Clock;
class Executor;
class SystemLog;

// Told what was read of the content filter; times are those at which the question was asked, in continuous seconds.
class FilterObserver {
public:
    virtual ~FilterObserver() = default;

    virtual void filterPropertiesRead(std::vector<ExtensionRecord> records, double at) = 0;
    virtual void filterPropertiesFailed(double at) = 0;
    virtual void filterPreferencesRead(const FilterPreferences& preferences, double at) = 0;
    virtual void filterPreferencesFailed(double at) = 0;
};

enum class FilterRequestReason { launch, user };

// How far a request for the filter has come when its caller is told: at its end, or when it waits for the user.
struct FilterRequestEnd {
    // Our own check found that the extension that is there needs no replacing.
    enum class Kept { no, extensionOff, extensionEnabled };

    LaunchActivationOutcome outcome;
    Kept kept { Kept::no };
    std::optional<FilterError> error;

    bool operator==(const FilterRequestEnd&) const = default;
};

// For the log: "completed, an older extension was replaced".
[[nodiscard]] std::string describe(const FilterRequestEnd& end);

// Whether the bundled extension is to take the place of the one that is there: unless that one is as new or newer.
[[nodiscard]] ExtensionReplacement replacementDecision(const ExtensionRecord& existing, const ExtensionRecord& bundled);

// Asks the system about the content filter, and asks for it to be activated, configured or removed. Every question has
// at most one answer outstanding; one that is not answered within ten seconds is given up and asked anew. Main thread
// only.
class FilterManager {
public:
    static constexpr double questionTimeout = 10; // Seconds.
    // The system's list of extensions is asked for less often than the configuration, which is read at each pass.
    static constexpr double propertiesInterval = 10;

    FilterManager(FilterSystem& system, Executor& mainLoop, Clock& clock, SystemLog& log, FilterObserver& observer);

    // Reads the configuration, and the extensions when they are due. `onRead` is called after each answer that counts.
    void refresh();
    void setReadHandler(std::function<void()> onRead) { m_onRead = std::move(onRead); }

    // Asks the system to activate the bundled extension; while a request is under way that one is told of. `onEnd` is
    // called once, never from inside this call. What the user started is configured once it is active.
    void activate(FilterRequestReason reason, std::function<void(const FilterRequestEnd&)> onEnd);

    // Switches the filter on.
    void configure();

    // Takes the configuration away, and then the extension.
    void remove();

    [[nodiscard]] bool isAwaitingUserApproval() const { return m_awaitsApproval; }
    [[nodiscard]] bool wasActivationSubmitted() const { return m_activationSubmitted; }
    [[nodiscard]] std::optional<ExtensionRecord> bundledExtension() const { return m_system.bundledExtension(); }

    // The decision at launch was that there is nothing to activate.
    void launchPolicySubmittedNothing();

private:
    struct Request {
        FilterRequestReason reason;
        std::vector<std::function<void(const FilterRequestEnd&)>> callers; // Those that have not been told.
        bool replaced { false };
        FilterRequestEnd::Kept kept { FilterRequestEnd::Kept::no };
    };
    // The latest question of its kind; an answer to an earlier one is dropped.
    struct Question {
        std::optional<double> askedAt;
        bool isOpen { false };
        std::uint64_t number { 0 };

        [[nodiscard]] bool mayAsk(double now) const { return !isOpen || now - *askedAt > questionTimeout; }
    };

    void readPreferences(double now);
    void readProperties(double now);
    void readAnew();
    [[nodiscard]] ExtensionReplacement replacing(const ExtensionRecord& existing, const ExtensionRecord& bundled);
    void requestParked();
    void requestEnded(const std::expected<ExtensionRequestResult, FilterError>& result);
    void tellCallers(const FilterRequestEnd& end);

    FilterSystem& m_system;
    Executor& m_mainLoop;
    Clock& m_clock;
    SystemLog& m_log;
    FilterObserver& m_observer;
    std::function<void()> m_onRead;
    Question m_preferences;
    Question m_properties;
    std::optional<Request> m_request;
    bool m_awaitsApproval { false };
    bool m_activationSubmitted { false };
    LifeToken m_life;
};

}
