#pragma once

#include "fakes/FakeFilterSystem.h"
#include "fakes/FakeMainLoop.h"
#include "fakes/FakePorts.h"
#include "fakes/FakeServiceManager.h"
#include "install/ServiceInstaller.h"
#include "setup/ComponentMonitor.h"
#include "setup/DeviceSetupActions.h"
#include "track/AppAlertPresenter.h"

namespace brevanta {

class FakeServiceInstaller final : public ServiceInstaller {
public:
    void begin() override { ++begun; }
    [[nodiscard]] bool isInFlight() const override { return inFlight; }

    int begun { 0 };
    bool inFlight { false };
};

// The two protective components with a system that does what the test says; it begins as one that answers nothing.
struct ComponentBench {
    ComponentBench(FakeMainLoop& theMainLoop, FakeClock& theClock, FakeSystemLog& theLog)
        : mainLoop(theMainLoop)
        , clock(theClock)
        , log(theLog)
    {
        services.launchChecks.isHeld = true;
        services.backgroundItems.isHeld = true;
        filterSystem.preferences.isHeld = true;
        filterSystem.properties.isHeld = true;
    }

    // From now on the system answers, and has these copies of the filter.
    void systemAnswers(std::vector<ExtensionRecord> copies, FilterPreferences configuration)
    {
        filterSystem.properties.isHeld = false;
        filterSystem.properties.result = std::move(copies);
        filterSystem.preferences.isHeld = false;
        filterSystem.preferences.result = configuration;
    }

    FakeMainLoop& mainLoop;
    FakeClock& clock;
    FakeSystemLog& log;
    FakeUserDefaults defaults;
    FakeServiceManager services { mainLoop };
    FakeFilterSystem filterSystem { mainLoop };
    FakeAlertPanel panel { mainLoop };
    FakeWorkspace workspace { mainLoop };
    FakeServiceInstaller installer;
    AppAlertPresenter alerts { panel, mainLoop };
    std::vector<ProtectiveComponent> switchedOff; // What the user was told of.
    ComponentMonitor monitor { { .mainLoop = mainLoop,
        .clock = clock,
        .log = log,
        .defaults = defaults,
        .services = services,
        .filterSystem = filterSystem,
        .bundledServiceVersion = "1.2.3",
        .postSwitchedOff = [this](ProtectiveComponent component) { switchedOff.push_back(component); } } };
    std::vector<std::string> settingsOpened;
    std::function<void()> endFilterActivation; // Set by the action that the page begins, as the next.
    std::function<void()> endInstall;
    DeviceSetupActions deviceSetup { { .monitor = monitor,
        .services = services,
        .log = log,
        .installService =
            [this](std::function<void()> onEnd) {
                installer.begin();
                endInstall = std::move(onEnd);
            },
        .isInstalling = [this] { return installer.inFlight; },
        .activateFilter = [this](std::function<void()> onEnd) { endFilterActivation = std::move(onEnd); },
        .removeFilter = [] {},
        .openFilterSettings = [this] { settingsOpened.emplace_back("filter"); },
        .openLoginItems = [this] { settingsOpened.emplace_back("login items"); },
        .onboardingChanged = [] {} } };
};

inline const ExtensionRecord activeExtension { .isEnabled = true, .shortVersion = "1.2.3", .buildVersion = "7" };
inline constexpr FilterPreferences filterSwitchedOn { .isConfigured = true, .isEnabled = true };
inline constexpr FilterPreferences filterSwitchedOff { .isConfigured = true, .isEnabled = false };

}
