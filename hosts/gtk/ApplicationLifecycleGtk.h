#pragma once

#include "platform/ApplicationLifecycle.h"

#include <gtkmm.h>

namespace brevanta {

// A Gtk::Application, with SIGTERM and SIGINT as further ways to quit. The accessory policy keeps the application's
// windows out of the taskbar; desktops without a taskbar show no difference.
class ApplicationLifecycleGtk final : public ApplicationLifecycle {
public:
    // The application is registered and is the first of its name.
    explicit ApplicationLifecycleGtk(Glib::RefPtr<Gtk::Application> application);
    ~ApplicationLifecycleGtk() override;
    ApplicationLifecycleGtk(const ApplicationLifecycleGtk&) = delete;
    ApplicationLifecycleGtk& operator=(const ApplicationLifecycleGtk&) = delete;

    // Serves the main loop until the application is quit, and returns the exit status of the process. Once.
    [[nodiscard]] int run(ApplicationObserver& observer);

    void setActivationPolicy(ActivationPolicy policy) override;
    void activate() override;
    void terminate() override;
    void answerTermination(TerminationAnswer answer) override;

private:
    enum class Phase { launching, running, awaitingAnswer, ending };

    void activated();
    void applyPolicy(Gtk::Window& window) const;
    void quit();
    static gboolean signalCame(gpointer self);

    Glib::RefPtr<Gtk::Application> m_application;
    ApplicationObserver* m_observer { nullptr }; // Set while the loop runs.
    Phase m_phase { Phase::launching };
    ActivationPolicy m_policy { ActivationPolicy::regular };
};

}
