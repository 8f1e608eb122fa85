#include "support/ClientBench.h"

#include "support/ControlChannel.h"

namespace brevanta::functional {

static constexpr Milliseconds startTime { 20000 };

ClientBench::ClientBench(ClientBenchOptions options)
    : m_options(std::move(options))
    , m_service(serviceExecutable())
    , m_web(webExecutable(), m_service.controlPath(), m_options.pagesFolder)
{
}

std::expected<void, std::string> ClientBench::startSurroundings()
{
    auto display = VirtualDisplay::start(m_options.displaySize);
    if (!display)
        return std::unexpected(display.error());
    m_display = std::move(*display);
    auto bus = PrivateBus::start();
    if (!bus)
        return std::unexpected(bus.error());
    m_bus = std::move(*bus);
    if (m_options.notificationTaker == NotificationTaker::recorder) {
        auto notifications = RecordingNotifications::start(*m_bus, m_options.notificationCapabilities);
        if (!notifications)
            return std::unexpected(notifications.error());
        m_notifications = std::move(*notifications);
    }
    if (auto started = m_web.start(); !started)
        return started;
    for (const auto& line : m_options.webPreparations) {
        if (const auto answer = m_web.command(line); !answer)
            return std::unexpected(answer.error());
    }
    m_menu = std::make_unique<DbusMenu>(*m_bus, BrevantaClient::busName);
    m_statusItem = std::make_unique<StatusNotifier>(*m_bus, BrevantaClient::busName);
    if (m_options.serviceAtStart != ServiceAtStart::running)
        return {};
    if (auto started = m_service.start(); !started)
        return started;
    for (const auto& line : m_options.preparations) {
        if (const auto answer = m_service.command(line); !answer)
            return std::unexpected(answer.error());
    }
    return {};
}

std::expected<void, std::string> ClientBench::startClient()
{
    m_client = std::make_unique<BrevantaClient>(BrevantaClientOptions {
        .executable = m_options.executable,
        .busAddress = m_bus->address(),
        .display = m_display->name(),
        // Empty: where an installed service listens.
        .socketPath = m_options.serviceAtStart == ServiceAtStart::byInstall ? std::string() : m_service.socketPath(),
        .logPath = m_options.logPath,
        .arguments = m_options.arguments,
        .appUrl = m_web.url() + m_options.startPage,
        .certificatePath = m_web.certificatePath(),
        .trustedHosts = m_options.trustedHosts,
        .signInHosts = m_options.signInHosts,
        .variables = m_options.variables,
    });
    if (auto started = m_client->start(); !started)
        return started;
    return awaitMenu();
}

std::expected<std::string, std::string> ClientBench::commandInstalledService(const std::string& line) const
{
    return sendCommand((m_client->root() / "var/run/com.brevanta.daemon.control.sock").string(), line, startTime);
}

std::expected<void, std::string> ClientBench::restartClient()
{
    m_client->process().end();
    if (!m_bus->awaitNoOwner(BrevantaClient::busName, startTime))
        return std::unexpected("the client has kept its name on the bus:\n" + m_client->log());
    if (auto started = m_client->startAgain(); !started)
        return started;
    return awaitMenu();
}

std::expected<void, std::string> ClientBench::awaitMenu()
{
    if (!m_bus->awaitOwner(BrevantaClient::busName, startTime))
        return std::unexpected("the client did not take its name on the bus:\n" + m_client->log());
    // Nothing announces that the menu's object is there.
    if (!awaitByAsking([this] { return m_menu->read().has_value(); }, startTime))
        return std::unexpected("the client put no menu on the bus:\n" + m_client->log());
    return {};
}

}
