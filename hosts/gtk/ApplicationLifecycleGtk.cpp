#include "gtk/ApplicationLifecycleGtk.h"

#include "gtk/DesktopSession.h"
#include "gtk/UrlGtk.h"
#include "posix/ProgramArguments.h"

#include <csignal>
#include <glib-unix.h>

namespace brevanta {

namespace {

class UnixSignalSource {
public:
    UnixSignalSource(int signal, GSourceFunc callback, gpointer data)
        : m_id(g_unix_signal_add(signal, callback, data))
    {
    }
    ~UnixSignalSource() { g_source_remove(m_id); }
    UnixSignalSource(const UnixSignalSource&) = delete;
    UnixSignalSource& operator=(const UnixSignalSource&) = delete;

private:
    guint m_id;
};

}

ApplicationLifecycleGtk::ApplicationLifecycleGtk(Glib::RefPtr<Gtk::Application> application)
    : m_application(std::move(application))
{
    m_application->signal_activate().connect([this] { activated(); });
    m_application->signal_open().connect([this](const auto& files, const auto&) { opened(files); });
    m_application->signal_window_added().connect([this](Gtk::Window* window) { applyPolicy(*window); });
}

ApplicationLifecycleGtk::~ApplicationLifecycleGtk() = default;

int ApplicationLifecycleGtk::run(ApplicationObserver& observer, const std::vector<std::string>& links)
{
    m_observer = &observer;
    const UnixSignalSource terminateSignal(SIGTERM, signalCame, this);
    const UnixSignalSource interruptSignal(SIGINT, signalCame, this);
    const ActivityWatch activity([&observer] { observer.applicationDidBecomeActive(); });
    const WakeWatch wake([&observer] { observer.systemDidWake(); });
    m_application->hold(); // The status item keeps the application going, not its windows.
    observer.applicationWillFinishLaunching();
    runOrHandOver(*m_application.operator->(), links);
    m_phase = Phase::ending;
    observer.applicationWillTerminate();
    m_observer = nullptr;
    return 0;
}

void ApplicationLifecycleGtk::setActivationPolicy(ActivationPolicy policy)
{
    m_policy = policy;
    for (auto* const window : m_application->get_windows())
        applyPolicy(*window);
}

void ApplicationLifecycleGtk::activate()
{
    if (auto* const window = m_application->get_active_window(); window && window->get_visible())
        window->present();
}

void ApplicationLifecycleGtk::terminate()
{
    if (!m_observer || m_phase == Phase::ending)
        return;
    if (m_observer->applicationShouldTerminate() == TerminationDecision::now)
        return quit();
    m_phase = Phase::awaitingAnswer;
}

void ApplicationLifecycleGtk::answerTermination(TerminationAnswer answer)
{
    if (m_phase != Phase::awaitingAnswer)
        return;
    if (answer == TerminationAnswer::proceed)
        return quit();
    m_phase = Phase::running;
}

void ApplicationLifecycleGtk::activated()
{
    // The first activation is this start itself; the later ones are other starts.
    if (m_phase == Phase::launching)
        finishLaunching();
    else if (m_phase != Phase::ending)
        m_observer->applicationShouldReopen();
}

void ApplicationLifecycleGtk::opened(const Gio::Application::type_vec_files& files)
{
    if (m_phase == Phase::ending)
        return;
    for (const auto& file : files) {
        // A GFile of a scheme that GIO does not know keeps its URI letter by letter.
        const std::string link = file->get_uri();
        if (const auto url = isLink(link) ? parseUrl(link) : std::nullopt)
            m_observer->applicationDidOpenUrl(*url);
    }
    if (m_phase == Phase::launching)
        finishLaunching();
}

void ApplicationLifecycleGtk::finishLaunching()
{
    m_phase = Phase::running;
    m_observer->applicationDidFinishLaunching();
}

void ApplicationLifecycleGtk::applyPolicy(Gtk::Window& window) const
{
    window.set_skip_taskbar_hint(m_policy == ActivationPolicy::accessory);
}

void ApplicationLifecycleGtk::quit()
{
    m_phase = Phase::ending;
    m_application->quit();
}

gboolean ApplicationLifecycleGtk::signalCame(gpointer self)
{
    static_cast<ApplicationLifecycleGtk*>(self)->terminate();
    return G_SOURCE_CONTINUE;
}

}
