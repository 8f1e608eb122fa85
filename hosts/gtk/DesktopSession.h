#pragma once

#include <expected>
#include <giomm.h>
#include <gtkmm.h>
#include <string>

namespace brevanta {

enum class InstanceRole { first, further };

// The display and the session bus, with the application registered on it.
struct DesktopSession {
    Glib::RefPtr<Gio::DBus::Connection> bus;
    Glib::RefPtr<Gtk::Application> application;
    InstanceRole role { InstanceRole::first };
};

struct DesktopSessionError {
    std::string message; // One line, in English.
};

// Joins the desktop under the given application id, which becomes a name on the bus (g_application_id_is_valid).
[[nodiscard]] std::expected<DesktopSession, DesktopSessionError> joinDesktopSession(const std::string& applicationId);

}
