#pragma once

#include "app/BuildConfiguration.h"
#include "base/LifeToken.h"
#include "diagnosis/DiagnosisFacts.h"
#include "platform/FilterSystem.h"
#include "platform/ServiceManager.h"
#include "platform/Url.h"

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>

namespace brevanta {

class Clock;
class DaemonClient;
class Executor;
class LocalSocketConnector;
class LoginItem;
class MainLoop;
class Timer;
class UserDefaults;
struct BlockingStatus;

// What a diagnosis asks of an operating system: nothing here needs a display. All outlive the run.
struct DiagnosisPorts {
    MainLoop& mainLoop;
    Executor& daemonQueue; // A serial queue, as the client's own exchanges have one.
    LocalSocketConnector& localSockets;
    Clock& clock;
    UserDefaults& defaults; // Read only.
    ServiceManager& services;
    FilterSystem& filterSystem;
    FileStore& files; // Read only.
    LoginItem& loginItem;
    std::function<std::optional<std::filesystem::path>()> sharedContainer; // As in AppPorts.
    // As NotificationCenter::getAuthorization.
    std::function<void(std::function<void(NotificationAuthorization)>)> getNotificationAuthorization;
    std::function<std::optional<Url>(const std::string& text)> parseUrl;
    std::function<AppLocationPolicy::Context()> location;
    std::filesystem::path resources;
    std::filesystem::path home;
    std::filesystem::path bundle;
    std::optional<std::string> updaterFeed; // As in AppPorts.
    std::optional<std::string> updaterKey;
    std::function<std::vector<std::string>()> confinedBrowsers {};
};

// Looks at everything once, changes nothing, and asks the service for nothing but its status. Main thread only.
class DiagnosisRun {
public:
    // What has not answered after so many seconds counts as silent. Each question alone is given up earlier; only a
    // service that trickles takes longer.
    static constexpr double timeLimit = 12;

    // `onEnd` is called once, from the main loop, with the facts and with the texts that may stand in no report.
    using End = std::function<void(const DiagnosisFacts& facts, const std::vector<std::string>& secrets)>;

    DiagnosisRun(DiagnosisPorts ports, BuildConfiguration configuration, End onEnd);
    ~DiagnosisRun();
    DiagnosisRun(const DiagnosisRun&) = delete;
    DiagnosisRun& operator=(const DiagnosisRun&) = delete;

    void start();

private:
    enum class Question { status, backgroundItem, preferences, properties, loginItem, notifications };

    void askService();
    void askFilter();
    void answered(Question question);
    void readFiles();
    [[nodiscard]] std::optional<DiagnosisFacts::SharedState> sharedState() const;
    void statusArrived(const std::expected<std::shared_ptr<const BlockingStatus>, DaemonFailure>& status);
    void end();

    DiagnosisPorts m_ports;
    BuildConfiguration m_configuration;
    End m_onEnd;
    std::unique_ptr<DaemonClient> m_daemonClient;
    std::unique_ptr<Timer> m_limit;
    std::set<Question> m_open;
    double m_startedAt { 0 };
    DiagnosisFacts m_facts;
    DaemonHealth m_service;
    FilterHealth m_filter;
    std::optional<FilterPreferences> m_preferences;
    std::vector<std::string> m_secrets;
    bool m_isOver { false };
    LifeToken m_life;
};

}
