#include "gtk/DesktopSession.h"

#include "base/Text.h"

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
        session.application = Gtk::Application::create(applicationId);
        session.application->register_application();
    } catch (const Glib::Error& error) {
        return fail("the session bus refuses the application: " + error.what().raw());
    }
    if (session.application->is_remote())
        session.role = InstanceRole::further;
    return session;
}

}
