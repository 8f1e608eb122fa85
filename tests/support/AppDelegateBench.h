#pragma once

#include "app/AppDelegate.h"
#include "fakes/FakeAdministrator.h"
#include "fakes/FakeCrashReporter.h"
#include "fakes/FakeFileStore.h"
#include "fakes/FakeFilterSystem.h"
#include "fakes/FakeLocalSockets.h"
#include "fakes/FakeLoginItem.h"
#include "fakes/FakeMainLoop.h"
#include "fakes/FakePorts.h"
#include "fakes/FakeProgramRunner.h"
#include "fakes/FakeServiceManager.h"
#include "fakes/FakeUpdater.h"
#include "fakes/FakeWebView.h"
#include "fakes/ManualExecutor.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>

namespace brevanta {

// The delegate on fakes: a launch in Applications, where no service listens yet, and the events that follow.
class AppDelegateBench : public testing::Test {
protected:
    AppDelegateBench() { sockets.peer = FakeLocalSockets::Peer::absent; }

    void launch()
    {
        delegate.applicationWillFinishLaunching();
        delegate.applicationDidFinishLaunching();
        queue.runAll();
        mainLoop.runPosted();
    }

    // What the trusted page posts, once there is one.
    void hear(const std::string& message)
    {
        webView.commit({ .text = {}, .scheme = "https", .host = "www.example.com" });
        webView.configuration->messageHandlers.at(0).handler.messageArrived(
            { message, { true, "https", "www.example.com" } });
    }

    [[nodiscard]] bool hasLine(const std::string& line) const
    {
        return std::ranges::find(log.lines, line) != log.lines.end();
    }

    // What stands for the system's parser knows these URLs only.
    [[nodiscard]] std::optional<Url> parseUrl(const std::string& text) const
    {
        const auto found = urls.find(text);
        return found != urls.end() ? std::optional(found->second) : std::nullopt;
    }

    // Keeps the calls that a test of an order is about; one that only repeats the call before is left out.
    void note(const std::string& call)
    {
        if (std::ranges::find(expected, call) != expected.end() && (calls.empty() || calls.back() != call))
            calls.push_back(call);
    }

    std::vector<std::string> expected;
    std::vector<std::string> calls;

    // Usable once it is among the URLs.
    static constexpr auto updaterFeed = "https://updates.example.com/";

    std::map<std::string, Url> urls;
    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    ManualExecutor queue;
    ManualExecutor sharedStateQueue;
    ManualExecutor pageScriptQueue;
    ManualExecutor nativeMessagingQueue;
    FakeLocalSockets sockets;
    FakeSystemLog log;
    FakeUserDefaults defaults;
    FakeApplicationLifecycle lifecycle;
    FakeMainWindow window;
    FakeStatusItem statusItem;
    FakeAlertPanel alerts { mainLoop };
    FakeWorkspace workspace { mainLoop };
    FakeNotificationCenter notifications { mainLoop };
    FakeLoginRecords loginRecords;
    FakeWebView webView;
    FakePlaceholder placeholder;
    FakeOpenPanel openPanel { mainLoop };
    FakeServiceManager services { mainLoop };
    FakeFilterSystem filterSystem { mainLoop };
    FakeFileStore files;
    FakeAdministrator administrator { mainLoop };
    FakeLoginItem loginItem { mainLoop };
    FakeProgramRunner programs { mainLoop };
    AppLocationPolicy::Context location { .resolvedBundleURL = "/Applications/Brevanta.app",
        .resolvedSystemApplicationsURL = "/Applications",
        .volumeIsReadOnly = {},
        .resolvedUserApplicationsURL = {} };
    FakeUpdater updater;
    FakeCrashReporter crashReporter;
    AppDelegate delegate {
        AppPorts { mainLoop, queue, sharedStateQueue, pageScriptQueue, nativeMessagingQueue, sockets, clock, log,
            defaults, lifecycle, window, statusItem, alerts, workspace, notifications, loginRecords, webView,
            placeholder, openPanel, services, filterSystem, files, [] { return std::filesystem::path("/shared"); },
            SystemVersion {}, [] { return "6f9619ff-8b86-4011-b42d-00c04fc964ff"; }, "A Mac",
            [this](const std::string& text) { return parseUrl(text); }, "/Applications/Brevanta.app/Contents/Resources",
            "/Users/ada", { "es-MX" }, "/Applications/Brevanta.app", administrator, crashReporter, "staging", updater,
            updaterFeed, std::string(43, 'A') + "=", loginItem, programs,
            [this] {
                note("location");
                return location;
            } },
        BuildConfiguration { .version = "0.121.0",
            .bundleIdentifier = "com.example.Client",
            .root = "/",
            .socketPath = "/the/socket",
            .appUrl = "https://www.example.com/",
            .trustedHosts = { "www.example.com" },
            .signInHosts = {},
            .extensionStoreUrl = {},
            .crashEndpoint = "https://key@crashes.example/7",
            .extraCertificate = std::nullopt }
    };
};

}
