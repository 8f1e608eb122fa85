#pragma once

#include "daemon/DaemonClient.h"
#include "fakes/FakeDaemonTransport.h"
#include "fakes/FakeMainLoop.h"
#include "fakes/FakePorts.h"
#include "fakes/FakeServiceManager.h"
#include "fakes/FakeUpdater.h"
#include "fakes/FakeWebView.h"
#include "fakes/ManualExecutor.h"
#include "install/RemovalShellController.h"
#include "install/ServiceInstaller.h"
#include "notify/HabitReminderPresenter.h"
#include "notify/SystemNotificationCenterClient.h"
#include "setup/DeviceSetup.h"
#include "support/StatusReply.h"
#include "track/AppAlertPresenter.h"
#include "web/WebViewWindow.h"

#include <memory>

namespace brevanta {

inline Url urlOf(const std::string& scheme, const std::string& host, const std::string& path = "/")
{
    return { .text = scheme + "://" + host + path, .scheme = scheme, .host = host, .path = path };
}

class FakeDeviceSetup final : public DeviceSetup {
public:
    SetupActionOutcome perform(std::string_view action) override
    {
        performed.emplace_back(action);
        return SetupActionOutcome::taken;
    }
    [[nodiscard]] Json state() const override { return { { "schema", 1 } }; }
    void setChangeHandler(std::function<void()> handler) override { onChange = std::move(handler); }
    void pageChanged() override { ++pageChanges; }
    [[nodiscard]] bool isFilterRemovable() const override { return removable; }
    void removeFilter() override { ++removals; }

    std::vector<std::string> performed;
    std::function<void()> onChange;
    int pageChanges { 0 };
    bool removable { false };
    int removals { 0 };
};

class IdleOrBusyInstaller final : public ServiceInstaller {
public:
    void begin() override { inFlight = true; }
    [[nodiscard]] bool isInFlight() const override { return inFlight; }

    bool inFlight { false };
};

// The web shell with an engine, a service and a desktop that do what the test says.
class WebBench {
public:
    static constexpr auto appUrl = "https://www.example.com/app";
    const std::string uuid = "6f9619ff-8b86-4011-b42d-00c04fc964ff";

    void open(Updater* updater = nullptr)
    {
        window = std::make_unique<WebViewWindow>(WebViewWindow::Dependencies {
            .mainLoop = mainLoop,
            .pageScriptQueue = pageScriptQueue,
            .clock = clock,
            .log = log,
            .defaults = defaults,
            .window = mainWindow,
            .webView = webView,
            .placeholder = placeholder,
            .openPanel = openPanel,
            .alerts = alerts,
            .workspace = workspace,
            .notifications = notificationClient,
            .reminders = reminders,
            .daemonClient = daemonClient,
            .deviceSetup = deviceSetup,
            .removal = removal,
            .updater = updater,
            .origins = TrustedOrigins({ "example.com", "www.example.com" }, { "login.example.org" }),
            .activateApplication = [this] { ++activations; },
            .newUuid = [this] { return uuid; },
            .deviceName = "Ada's \"Mac\"",
            .appUrl = appUrl,
            .applicationsFolder = "/Applications",
            .version = "0.121.0",
            .bundleIdentifier = "com.brevanta.KestreluneMac",
            .extensionStoreUrl = "https://store.example/extension",
        });
    }

    // With the application's page in front, finished.
    void openUsable(Updater* updater = nullptr)
    {
        open(updater);
        window->loadCoordinator().prepare();
        window->loadCoordinator().release("released");
        webView.commit(urlOf("https", "www.example.com", "/app"));
        webView.finish();
        settle();
        webView.scripts.clear();
        log.lines.clear();
    }

    // What the page posts; from the main frame of the application's origin unless the test says otherwise.
    void post(const Json& body, const FrameFacts& frame = { true, "https", "www.example.com" })
    {
        webView.configuration->messageHandlers.at(0).handler.messageArrived({ body.dump(), frame });
        settle();
    }

    std::optional<std::string> ask(const Json& body, const FrameFacts& frame = { true, "https", "www.example.com" })
    {
        return webView.configuration->replyHandlers.at(0).handler.replyTo({ body.dump(), frame });
    }

    void settle()
    {
        do {
            queue.runAll();
            pageScriptQueue.runAll();
            mainLoop.runPosted();
        } while (queue.pending() + pageScriptQueue.pending() > 0);
    }

    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    ManualExecutor queue;
    ManualExecutor pageScriptQueue;
    FakeSystemLog log;
    FakeUserDefaults defaults;
    FakeMainWindow mainWindow;
    FakeWebView webView;
    FakePlaceholder placeholder;
    FakeOpenPanel openPanel { mainLoop };
    FakeAlertPanel alertPanel { mainLoop };
    AppAlertPresenter alerts { alertPanel, mainLoop };
    FakeWorkspace workspace { mainLoop };
    FakeNotificationCenter notifications { mainLoop };
    SystemNotificationCenterClient notificationClient { notifications, mainLoop,
        [this] { return clock.continuousSeconds(); } };
    HabitReminderPresenter reminders { defaults };
    std::vector<Json> requests; // To the service.
    FakeDaemonTransport::Answer reply { statusReply().dump() };
    DaemonClient daemonClient { std::make_unique<FakeDaemonTransport>([this](const Json& request) {
                                   requests.push_back(request);
                                   return reply;
                               }),
        queue, mainLoop };
    FakeDeviceSetup deviceSetup;
    IdleOrBusyInstaller installer;
    FakeServiceManager services { mainLoop };
    RemovalShellController removal { daemonClient, installer, services, log };
    int activations { 0 };
    std::unique_ptr<WebViewWindow> window;
};

}
