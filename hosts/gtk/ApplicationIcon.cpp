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

}
