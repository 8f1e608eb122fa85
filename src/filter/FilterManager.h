#pragma once

#include "base/LifeToken.h"
#include "filter/FilterRequestEnd.h"
#include "platform/FilterSystem.h"

#include <cstdint>
#include <functional>
#include <optional>
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

// Whether the bundled extension is to take the place of the one that is there: unless that one is as new or newer.
[[nodiscard]] ExtensionReplacement replacementDecision(const ExtensionRecord& existing, const ExtensionRecord& bundled);

// Asks the system about the content filter, and asks for it to be activated, configured or removed. Every question has
// at most one answer outstanding; one that is not answered within ten seconds is given up and asked anew. Main thread
// only.
class FilterManager {
public:
    using Notify = std::function<void(const FilterRequestEnd&)>;

    static constexpr double questionTimeout = 10; // Seconds.
    // Seconds after which a request has failed that the system neither ends nor lets wait for the user's approval. Long
    // enough for the user to answer what the system asks when the filter is configured the first time.
    static constexpr double requestTimeout = 60;
    // The system's list of extensions is asked for less often than the configuration, which is read at each pass.
    static constexpr double propertiesInterval = 10;

    FilterManager(FilterSystem& system, Executor& mainLoop, Clock& clock, SystemLog& log, FilterObserver& observer);

    // Reads the configuration, and the extensions when they are due, and ends a request whose time is up. `onRead` is
    // called after each answer that counts.
    void refresh();
    void setReadHandler(std::function<void()> onRead) { m_onRead = std::move(onRead); }

    // Asks the system to activate the bundled extension, or to switch the filter on. While a request is under way that
    // one is joined. `notify` is called when it waits for the user's approval, at most once, and once at its end; never
    // from inside this call.
    void activate(Notify notify);
    void configure(Notify notify);

    // Takes the configuration away, and then the extension; having none is no error. A request under way ends as
    // skipped, from inside this call, and what the system still does for it is not followed. `completion` is called
    // once the system has answered.
    void remove(Notify completion);

    [[nodiscard]] bool isAwaitingUserApproval() const { return m_request && m_request->awaitsApproval; }
    // The last change that was asked for takes effect when this computer restarts.
    [[nodiscard]] bool needsRestart() const { return m_needsRestart; }
    [[nodiscard]] bool wasActivationSubmitted() const { return m_activationSubmitted; }
    [[nodiscard]] std::optional<ExtensionRecord> bundledExtension() const { return m_system.bundledExtension(); }

    // The decision at launch was that there is nothing to activate.
    void launchPolicySubmittedNothing();

private:
    using ExtensionResult = std::expected<ExtensionRequestResult, FilterError>;

    struct Request {
        std::uint64_t number; // By which an answer to an earlier request is told from one to this.
        const char* purpose; // For the log: "activate".
        double startedAt;
        std::vector<Notify> callers;
        bool awaitsApproval { false };
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
    std::uint64_t begin(const char* purpose, Notify notify);
    void join(Notify notify);
    [[nodiscard]] bool isUnderWay(std::uint64_t number) const { return m_request && m_request->number == number; }
    void activationParked();
    void activationEnded(const ExtensionResult& result);
    void endRequest(const FilterRequestEnd& end);
    void removalEnded(const ExtensionResult& result, const Notify& completion);

    FilterSystem& m_system;
    Executor& m_mainLoop;
    Clock& m_clock;
    SystemLog& m_log;
    FilterObserver& m_observer;
    std::function<void()> m_onRead;
    Question m_preferences;
    Question m_properties;
    std::optional<Request> m_request;
    std::uint64_t m_lastRequest { 0 };
    bool m_needsRestart { false };
    bool m_activationSubmitted { false };
    LifeToken m_life;
};

}
