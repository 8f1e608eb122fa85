#pragma once

#include <expected>
#include <filesystem>
#include <gtkmm.h>
#include <string>

namespace brevanta {

// The application's picture, brevanta.svg in `resources`, `size` logical pixels wide and high and sharp on a screen of
// this scale. The error is a message for the log.
[[nodiscard]] std::expected<Glib::RefPtr<Gdk::Pixbuf>, std::string> applicationIcon(
    const std::filesystem::path& resources, int size, int scale);

// Has the image show such a picture of this scale, under the application's name for who cannot see it.
void showApplicationIcon(Gtk::Image& image, const Glib::RefPtr<Gdk::Pixbuf>& icon, int scale);

}
