#pragma once

#include "app/BuildConfiguration.h"
#include "base/LifeToken.h"
#include "diagnosis/DiagnosisFacts.h"
#include "platform/FilterSystem.h"
#include "platform/PathFacts.h"
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
    std::function<PathFacts(const std::filesystem::path&)> pathFacts; // What is at an absolute path. Changes nothing.
    std::function<FolderFacts(const std::filesystem::path&)> folderFacts; // Of a folder, or of one that is to be.
    std::filesystem::path preferencesFile; // The file behind `defaults`,
    std::function<bool(std::string_view bytes)> isPreferences; // and whether these are the bytes of a whole one.
    // Whether another process of this user is the client; nothing when that cannot be found out. Answers as a port.
    std::function<void(std::function<void(std::optional<bool>)>)> findClient;
    std::string systemName; // For people: "macOS 15.0.0".
    std::string systemVersion; // "15.0.0"
    std::string minimumSystem; // The oldest that the application runs on: "13.3"; empty when it does not say.
    std::optional<bool> isAdministrator; // Whether the user can give an administrator's password.
    std::string log; // Where the client's log is, and how to read it.
    std::function<std::vector<std::string>()> confinedBrowsers {};
};

// Looks at everything once, changes nothing, and asks the service for nothing but its status. Main thread only.
class DiagnosisRun {
public:
    // What has not answered after so many seconds counts as silent. Each question alone is given up earlier; only a
    // service that trickles takes longer.
    static constexpr double timeLimit = 12;

    // What the client should have written by now is looked at again after so many seconds: it asks every two, and may
    // have been about to write.
    static constexpr double secondLookAfter = 3;

    // `onEnd` is called once, from the main loop, with the facts and with the texts that may stand in no report.
    using End = std::function<void(const DiagnosisFacts& facts, const std::vector<std::string>& secrets)>;

    DiagnosisRun(DiagnosisPorts ports, BuildConfiguration configuration, End onEnd);
    ~DiagnosisRun();
    DiagnosisRun(const DiagnosisRun&) = delete;
    DiagnosisRun& operator=(const DiagnosisRun&) = delete;

    void start();

private:
    enum class Question { status, backgroundItem, preferences, properties, loginItem, notifications, client };

    void askService();
    void askFilter();
    void answered(Question question);
    void readFiles();
    void lookAtFolders();
    void lookAtSharedState();
    [[nodiscard]] bool mayBeWrittenYet() const;
    [[nodiscard]] DiagnosisFacts::Contact contactAfter(const DaemonFailure& failure) const;
    [[nodiscard]] DiagnosisFacts::Removal removal() const;
    void statusArrived(const std::expected<std::shared_ptr<const BlockingStatus>, DaemonFailure>& status);
    void end();

    DiagnosisPorts m_ports;
    BuildConfiguration m_configuration;
    End m_onEnd;
    std::unique_ptr<DaemonClient> m_daemonClient;
    std::unique_ptr<Timer> m_limit;
    std::unique_ptr<Timer> m_secondLook;
    std::set<Question> m_open;
    double m_startedAt { 0 };
    DiagnosisFacts m_facts;
    DaemonHealth m_service;
    FilterHealth m_filter;
    std::optional<FilterPreferences> m_preferences;
    std::shared_ptr<const BlockingStatus> m_status; // Null until the service has answered.
    std::vector<std::string> m_secrets;
    bool m_isOver { false };
    LifeToken m_life;
};

}
