#pragma once

#include "base/LifeToken.h"
#include "setup/DeviceSetup.h"

#include <functional>
#include <string>

namespace brevanta {

class ComponentMonitor;
class ServiceManager;
class SystemLog;

// What the page can have set up on this computer, one action at a time. Main thread only.
//
//   setup_onboarding_started, setup_onboarding_ended   the page leads the user through the set-up, or no longer does
//   setup_activate_filter                              activate the content filter, or configure it
//   setup_open_filter_settings                         open the settings in which the filter is allowed
//   setup_open_login_items                             open the settings in which the service is allowed
class DeviceSetupActions final : public DeviceSetup {
public:
    struct Dependencies {
        ComponentMonitor& monitor;
        ServiceManager& services;
        SystemLog& log;
        // Calls back once when the activation has ended, or waits for the user.
        std::function<void(std::function<void()>)> activateFilter;
        std::function<void()> openFilterSettings;
        std::function<void()> openLoginItems;
    };

    explicit DeviceSetupActions(Dependencies dependencies);

    SetupActionOutcome perform(std::string_view action) override;
    [[nodiscard]] Json state() const override;
    void setChangeHandler(std::function<void()> onChange) override { m_onChange = std::move(onChange); }
    void pageChanged() override;
    [[nodiscard]] bool isFilterRemovable() const override;
    void removeFilter() override;

    [[nodiscard]] bool isOnboardingActive() const { return m_onboardingActive; }

    // Something that the state is made of may have changed.
    void componentsChanged();

private:
    void setOnboarding(bool active);
    void begin(std::string_view action);
    void ended();

    Dependencies m_dependencies;
    std::function<void()> m_onChange;
    bool m_onboardingActive { false };
    std::string m_running; // The action that is under way; empty for none.
    LifeToken m_life;
};

}
