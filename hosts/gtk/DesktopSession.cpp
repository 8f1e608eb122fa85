#include "gtk/DesktopSession.h"

#include "base/Text.h"
#include "gtk/UrlGtk.h"

#include <algorithm>
#include <iterator>

namespace brevanta {

namespace {

std::unexpected<DesktopSessionError> fail(const std::string& message)
{
    return std::unexpected(DesktopSessionError { singleLine(message) });
}

}

std::expected<DesktopSession, DesktopSessionError> joinDesktopSession(const std::string& applicationId)
{
    // Both are asked for by hand: GTK would end the process without a display, and run as one of many without a bus.
    // The display comes first: without one, the bus's own complaint is about that too, in stranger words.
    DesktopSession session;
    if (!gtk_init_check(nullptr, nullptr))
        return fail("there is no display");
    try {
        Gio::init();
        session.bus = Gio::DBus::Connection::get_sync(Gio::DBus::BUS_TYPE_SESSION);
    } catch (const Glib::Error& error) {
        return fail("there is no session bus: " + error.what().raw());
    }
    try {
        session.application = Gtk::Application::create(applicationId, Gio::APPLICATION_HANDLES_OPEN);
        session.application->register_application();
    } catch (const Glib::Error& error) {
        return fail("the session bus refuses the application: " + error.what().raw());
    }
    if (session.application->is_remote())
        session.role = InstanceRole::further;
    return session;
}

int runOrHandOver(Gtk::Application& application, const std::vector<std::string>& links)
{
    // GApplication takes what it is to open from a command line, and waits until the bus has it.
    std::vector<std::string> arguments { "Brevanta" };
    std::ranges::copy_if(
        links, std::back_inserter(arguments), [](const auto& link) { return parseUrl(link).has_value(); });
    std::vector<char*> pointers;
    std::ranges::transform(arguments, std::back_inserter(pointers), [](auto& argument) { return argument.data(); });
    const auto count = static_cast<int>(pointers.size());
    pointers.push_back(nullptr);
    return application.run(count, pointers.data());
}

}
