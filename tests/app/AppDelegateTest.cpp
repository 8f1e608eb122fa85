#include "app/AppDelegate.h"

#include "daemon/DaemonClient.h"
#include "fakes/FakeLocalSockets.h"
#include "fakes/FakeMainLoop.h"
#include "fakes/FakePorts.h"
#include "fakes/ManualExecutor.h"
#include "menubar/MenuBarController.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

class AppDelegateTest : public testing::Test {
protected:
    AppDelegateTest() { sockets.peer = FakeLocalSockets::Peer::absent; }

    void launch()
    {
        delegate.applicationWillFinishLaunching();
        delegate.applicationDidFinishLaunching();
        queue.runAll();
        mainLoop.runPosted();
    }

    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    ManualExecutor queue;
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
    AppDelegate delegate { AppPorts { mainLoop, queue, sockets, clock, log, defaults, lifecycle, window, statusItem,
                               alerts, workspace, notifications, loginRecords },
        BuildConfiguration { .version = "0.121.0",
            .bundleIdentifier = {},
            .root = "/",
            .socketPath = "/the/socket",
            .appUrl = {},
            .trustedHosts = {},
            .signInHosts = {},
            .extraCertificate = std::nullopt } };
};

}

TEST_F(AppDelegateTest, LaunchMakesARegularApplicationThatPollsAndShowsItsWindow)
{
    launch();
    EXPECT_EQ(lifecycle.policy, ActivationPolicy::regular);
    EXPECT_EQ(sockets.paths, std::vector<std::string> { "/the/socket" });
    EXPECT_EQ(statusItem.visibleTitle(100), "Blocking service starting");
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(lifecycle.activations, 1);
    EXPECT_EQ(log.lines.front(), "[Launch] seconds since console login=unknown → showsWindow=true");
}

TEST_F(AppDelegateTest, RightAfterLoginTheWindowStaysHiddenUnlessThereIsNoBarToBeFoundIn)
{
    loginRecords.loginTime = clock.wallSeconds() - 30;
    launch();
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(lifecycle.activations, 0);

    statusItem.shownAs = StatusItemVisibility::noHost;
    launch();
    EXPECT_TRUE(window.isVisible());
}

TEST_F(AppDelegateTest, ReopeningAndTheMenuBringTheWindowToTheFront)
{
    loginRecords.loginTime = clock.wallSeconds() - 30;
    launch();
    delegate.applicationShouldReopen();
    EXPECT_EQ(window.timesShown, 1);
    statusItem.choose("Open Brevanta");
    EXPECT_EQ(window.timesShown, 2);
    EXPECT_EQ(lifecycle.activations, 2);
}

TEST_F(AppDelegateTest, QuitTerminatesAtOnceAndCutsOffWhatTheServiceHolds)
{
    launch();
    statusItem.choose("Quit");
    EXPECT_EQ(lifecycle.terminations, 1);
    EXPECT_EQ(delegate.applicationShouldTerminate(), TerminationDecision::now);
    delegate.applicationWillTerminate();
    EXPECT_EQ(sockets.interrupts, 1);
}

}
