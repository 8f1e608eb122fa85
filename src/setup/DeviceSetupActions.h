#pragma once

#include "base/LifeToken.h"
#include "install/ServiceProgram.h"
#include "setup/DeviceSetup.h"

#include <functional>
#include <string>

namespace brevanta {

class ComponentMonitor;
class SystemLog;

// What the page can have set up on this computer, one action at a time. Main thread only.
//
//   setup_onboarding_started, setup_onboarding_ended   the page leads the user through the set-up, or no longer does
//   setup_install_service                              install the blocking service, or install it anew
//   setup_update_service                               the same, when there is an update of it to be offered
//   setup_activate_filter                              activate the content filter, or configure it
//   setup_open_filter_settings                         open the settings in which the filter is allowed
//   setup_open_login_items                             open the settings in which the service is allowed
class DeviceSetupActions final : public DeviceSetup {
public:
    struct Dependencies {
        ComponentMonitor& monitor;
        ServiceManager& services;
        SystemLog& log;
        // Begins an install of the service, or joins the one under way; calls back once when it has ended.
        std::function<void(std::function<void()>)> installService;
        std::function<bool()> isInstalling; // Whoever began it.
        // Calls back once when the filter has been activated and configured, or has not, or waits for the user.
        std::function<void(std::function<void()>)> activateFilter;
        std::function<void()> removeFilter;
        std::function<void()> openFilterSettings;
        std::function<void()> openLoginItems;
        std::function<void()> onboardingChanged; // The page has begun to lead the user through the set-up, or ended.
    };

    explicit DeviceSetupActions(Dependencies dependencies);

    SetupActionOutcome perform(std::string_view action) override;
    [[nodiscard]] Json state() const override;
    void setChangeHandler(std::function<void()> onChange) override { m_onChange = std::move(onChange); }
    void pageChanged() override;
    [[nodiscard]] bool isFilterRemovable() const override;
    void removeFilter() override;

    [[nodiscard]] bool isOnboardingActive() const { return m_onboardingActive; }

    // What was found at launch: whether the service's program file is on this computer.
    void launched(ServiceProgram program);

    // Something that the state is made of may have changed.
    void componentsChanged();

private:
    void setOnboarding(bool active);
    using Start = std::function<void(std::function<void()>)>;

    void begin(std::string_view action, const Start& start);
    void beginUpdate();
    void ended();
    [[nodiscard]] std::string_view running() const;

    Dependencies m_dependencies;
    std::function<void()> m_onChange;
    bool m_onboardingActive { false };
    std::string m_running; // The action of the page that is under way; empty for none.
    LifeToken m_life;
};

}
