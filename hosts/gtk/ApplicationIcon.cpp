#include "gtk/ApplicationIcon.h"

namespace brevanta {

std::expected<Glib::RefPtr<Gdk::Pixbuf>, std::string> applicationIcon(
    const std::filesystem::path& resources, int size, int scale)
{
    try {
        return Gdk::Pixbuf::create_from_file((resources / "brevanta.svg").string(), size * scale, size * scale);
    } catch (const Glib::Error& error) {
        return std::unexpected(error.what().raw());
    }
}

void showApplicationIcon(Gtk::Image& image, const Glib::RefPtr<Gdk::Pixbuf>& icon, int scale)
{
    auto* const surface = gdk_cairo_surface_create_from_pixbuf(icon->gobj(), scale, nullptr);
    image.set(Cairo::RefPtr<Cairo::Surface>(new Cairo::Surface(surface, true)));
    image.get_accessible()->set_name("Brevanta");
    image.show();
}

}
