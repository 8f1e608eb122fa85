#pragma once

#include <expected>
#include <giomm.h>
#include <gtkmm.h>
#include <string>
#include <vector>

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

// Runs the registered application: the first one activates itself or opens the links, then serves the main loop until
// it is quit; a further one hands the same to the first and returns at once. What is no absolute URI counts as not
// given. The exit status of the process.
int runOrHandOver(Gtk::Application& application, const std::vector<std::string>& links);

}
