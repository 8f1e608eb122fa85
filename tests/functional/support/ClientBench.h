#pragma once

#include "support/BrevantaClient.h"
#include "support/RecordingNotifications.h"
#include "support/StandInService.h"
#include "support/StandInWeb.h"
#include "support/VirtualDisplay.h"

namespace brevanta::functional {

// By an install the service comes from the client's own bundle; until then there is none.
enum class ServiceAtStart { running, absent, byInstall };
enum class NotificationTaker { recorder, nobody };

struct ClientBenchOptions {
    std::string executable { clientExecutable() };
    std::string logPath {}; // Where the client's log is kept besides; empty for nowhere.
    std::vector<std::string> preparations {}; // What the service is told before the client starts.
    ServiceAtStart serviceAtStart { ServiceAtStart::running };
    NotificationTaker notificationTaker { NotificationTaker::recorder };
    std::vector<std::string> notificationCapabilities { "actions", "body" }; // Of the recorder.
    std::string pagesFolder {}; // Further pages that the web server serves; empty for none.
    std::vector<std::string> webPreparations {}; // What the web server is told before the client starts.
    std::string startPage {}; // Below the web server's URL; empty for the demo application.
    std::string trustedHosts { "localhost" };
    std::string signInHosts {};
    std::vector<std::string> arguments {}; // Of the client.
    DisplaySize displaySize {};
    std::vector<std::pair<std::string, std::string>> variables {}; // Further ones of the client's environment.
};

// The whole client with all that is around it, private to this process.
class ClientBench {
public:
    explicit ClientBench(ClientBenchOptions options = {});

    // Display, bus, notifications, service and web server.
    [[nodiscard]] std::expected<void, std::string> startSurroundings();
    // The client, until its menu can be read.
    [[nodiscard]] std::expected<void, std::string> startClient();

    // Ends the client and starts it again with what it has stored, until its menu can be read.
    [[nodiscard]] std::expected<void, std::string> restartClient();

    [[nodiscard]] const VirtualDisplay& display() const { return *m_display; }
    [[nodiscard]] const PrivateBus& bus() const { return *m_bus; }
    [[nodiscard]] RecordingNotifications& notifications() { return *m_notifications; }
    [[nodiscard]] StandInService& service() { return m_service; }
    // What the service answers that the client has installed.
    [[nodiscard]] std::expected<std::string, std::string> commandInstalledService(const std::string& line) const;
    [[nodiscard]] StandInWeb& web() { return m_web; }
    [[nodiscard]] BrevantaClient& client() { return *m_client; }
    [[nodiscard]] bool hasClient() const { return m_client != nullptr; }
    [[nodiscard]] DbusMenu& menu() { return *m_menu; }
    [[nodiscard]] StatusNotifier& statusItem() { return *m_statusItem; }

private:
    [[nodiscard]] std::expected<void, std::string> awaitMenu();

    ClientBenchOptions m_options;
    StandInService m_service;
    StandInWeb m_web;
    std::unique_ptr<VirtualDisplay> m_display;
    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<RecordingNotifications> m_notifications;
    std::unique_ptr<DbusMenu> m_menu;
    std::unique_ptr<StatusNotifier> m_statusItem;
    std::unique_ptr<BrevantaClient> m_client;
};

}
