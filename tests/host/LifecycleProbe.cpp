// Runs the application's lifecycle as the client does and writes one line for each call of the observer. With
// LIFECYCLE_PROBE_WINDOW in its environment it shows a window in front when it is opened once more.
#include "gtk/ApplicationLifecycleGtk.h"
#include "gtk/DesktopSession.h"
#include "posix/ProgramArguments.h"

#include <iostream>
#include <memory>

using namespace brevanta;

namespace {

class TellingObserver final : public ApplicationObserver {
public:
    explicit TellingObserver(Gtk::Application& application)
    {
        if (!g_getenv("LIFECYCLE_PROBE_WINDOW"))
            return;
        m_window = std::make_unique<Gtk::Window>();
        m_window->set_title("Lifecycle probe");
        application.add_window(*m_window);
    }

    void applicationWillFinishLaunching() override { tell("will-finish-launching"); }
    void applicationDidFinishLaunching() override { tell("did-finish-launching"); }
    void applicationDidOpenUrl(const Url& url) override { tell("open " + url.text); }
    void applicationDidBecomeActive() override { tell("active"); }
    void systemDidWake() override { tell("wake"); }
    TerminationDecision applicationShouldTerminate() override
    {
        tell("should-terminate");
        return TerminationDecision::now;
    }
    void applicationShouldReopen() override
    {
        tell("reopen");
        if (m_window)
            m_window->present();
    }
    void applicationWillTerminate() override { tell("will-terminate"); }

private:
    static void tell(const std::string& line) { std::cout << line << std::endl; }

    std::unique_ptr<Gtk::Window> m_window;
};

}

int main(int argc, char** argv)
{
    const auto request
        = parseProgramArguments(std::span<const char* const>(argv, static_cast<std::size_t>(argc)).subspan(1));
    const auto session = joinDesktopSession("com.brevanta.LifecycleProbe");
    if (!request || !session)
        return EXIT_FAILURE;
    if (session->role == InstanceRole::further)
        return runOrHandOver(*session->application.operator->(), request->links);
    TellingObserver observer(*session->application.operator->());
    ApplicationLifecycleGtk lifecycle(session->application);
    return lifecycle.run(observer, request->links);
}
