#pragma once

#include "gtk/ActivityWatch.h"
#include "gtk/WakeWatch.h"
#include "platform/ApplicationLifecycle.h"

#include <gtkmm.h>
#include <string>
#include <vector>

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

    // Serves the main loop until the application is quit, and returns the exit status of the process. Once. The
    // observer gets the links that the process was started with before `applicationDidFinishLaunching`. What is no URL
    // of the scheme "brevanta", here or from another process, is left out.
    [[nodiscard]] int run(ApplicationObserver& observer, const std::vector<std::string>& links);

    void setActivationPolicy(ActivationPolicy policy) override;
    void activate() override;
    void terminate() override;
    void answerTermination(TerminationAnswer answer) override;

private:
    enum class Phase { launching, running, awaitingAnswer, ending };

    void activated();
    void opened(const Gio::Application::type_vec_files& files);
    void finishLaunching();
    void applyPolicy(Gtk::Window& window) const;
    void quit();
    static gboolean signalCame(gpointer self);

    Glib::RefPtr<Gtk::Application> m_application;
    ApplicationObserver* m_observer { nullptr }; // Set while the loop runs.
    Phase m_phase { Phase::launching };
    ActivationPolicy m_policy { ActivationPolicy::regular };
};

}
