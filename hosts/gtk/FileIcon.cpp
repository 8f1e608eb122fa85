#include "gtk/FileIcon.h"

#include "gtk/GObjectPtr.h"
#include "gtk/PropertyListGtk.h"

#include <algorithm>
#include <filesystem>
#include <gtk/gtk.h>
#include <optional>
#include <span>

namespace brevanta {

namespace {

namespace fs = std::filesystem;

constexpr int mostPixels = 1024;
constexpr int mostFilePixels = 4096; // Of a bundle's picture on one side: it is decoded whole.
constexpr std::uintmax_t mostFileBytes = 16U << 20;
constexpr int bitsPerSample = 8;

using Picture = GObjectPtr<GdkPixbuf>;

bool isPlainName(const std::string& name)
{
    return !name.empty() && name != "." && name != ".."
        && name.find_first_of(std::string("/\0", 2)) == std::string::npos;
}

Picture loadPicture(const fs::path& file, int pixels)
{
    std::error_code error;
    int width = 0;
    int height = 0;
    if (!fs::is_regular_file(file, error) || fs::file_size(file, error) > mostFileBytes
        || !gdk_pixbuf_get_file_info(file.c_str(), &width, &height) || std::max(width, height) > mostFilePixels)
        return nullptr;
    return Picture(gdk_pixbuf_new_from_file_at_scale(file.c_str(), pixels, pixels, TRUE, nullptr));
}

Picture bundlePicture(const fs::path& bundle, const PropertyListTexts& information, int pixels)
{
    const auto name = information.find("CFBundleIconFile");
    if (name == information.end() || !isPlainName(name->second))
        return nullptr;
    for (const auto* const ending : { "", ".svg", ".png" }) {
        if (auto picture = loadPicture(bundle / "Contents/Resources" / (name->second + ending), pixels))
            return picture;
    }
    return nullptr;
}

Picture themePicture(GIcon* icon, int pixels)
{
    if (!gdk_screen_get_default())
        return nullptr;
    const GObjectPtr<GtkIconInfo> found(
        gtk_icon_theme_lookup_by_gicon(gtk_icon_theme_get_default(), icon, pixels, GTK_ICON_LOOKUP_FORCE_SIZE));
    return Picture(found ? gtk_icon_info_load_icon(found.get(), nullptr) : nullptr);
}

Picture programPicture(int pixels)
{
    const GObjectPtr<GIcon> icon(g_themed_icon_new("application-x-executable"));
    return themePicture(icon.get(), pixels);
}

Picture kindPicture(const std::string& path, int pixels)
{
    const GObjectPtr<GFile> file(g_file_new_for_path(path.c_str()));
    const GObjectPtr<GFileInfo> information(
        g_file_query_info(file.get(), G_FILE_ATTRIBUTE_STANDARD_ICON, G_FILE_QUERY_INFO_NONE, nullptr, nullptr));
    auto* const icon = information ? g_file_info_get_icon(information.get()) : nullptr;
    return icon ? themePicture(icon, pixels) : nullptr;
}

Picture pictureOf(const std::string& path, int pixels)
{
    const auto information = readPropertyList(fs::path(path) / "Contents/Info.plist");
    if (!information)
        return kindPicture(path, pixels);
    auto own = bundlePicture(path, *information, pixels);
    return own ? std::move(own) : programPicture(pixels);
}

// The picture in the middle of a transparent square, made smaller if it does not fit.
Picture squared(GdkPixbuf* picture, int pixels)
{
    const int width = gdk_pixbuf_get_width(picture);
    const int height = gdk_pixbuf_get_height(picture);
    const double scale = std::min(1.0, static_cast<double>(pixels) / std::max(width, height));
    const int shownWidth = std::clamp(static_cast<int>(width * scale), 1, pixels);
    const int shownHeight = std::clamp(static_cast<int>(height * scale), 1, pixels);
    const int left = (pixels - shownWidth) / 2;
    const int top = (pixels - shownHeight) / 2;
    Picture square(gdk_pixbuf_new(GDK_COLORSPACE_RGB, TRUE, bitsPerSample, pixels, pixels));
    if (!square)
        return nullptr;
    gdk_pixbuf_fill(square.get(), 0);
    const Picture shown(gdk_pixbuf_scale_simple(picture, shownWidth, shownHeight, GDK_INTERP_BILINEAR));
    const Picture withAlpha(shown ? gdk_pixbuf_add_alpha(shown.get(), FALSE, 0, 0, 0) : nullptr);
    if (!withAlpha)
        return nullptr;
    gdk_pixbuf_copy_area(withAlpha.get(), 0, 0, shownWidth, shownHeight, square.get(), left, top);
    return square;
}

std::vector<std::uint8_t> encoded(GdkPixbuf* picture)
{
    char* bytes = nullptr;
    gsize size = 0;
    if (!gdk_pixbuf_save_to_buffer(picture, &bytes, &size, "png", nullptr, nullptr))
        return {};
    const GLibPtr<char> owned(bytes);
    const std::span content(bytes, size);
    return { content.begin(), content.end() };
}

}

std::vector<std::uint8_t> drawFileIcon(const std::string& path, int pixels)
{
    if (pixels < 1 || pixels > mostPixels || path.contains('\0') || !fs::path(path).is_absolute())
        return {};
    const auto picture = pictureOf(path, pixels);
    const auto square = picture ? squared(picture.get(), pixels) : nullptr;
    return square ? encoded(square.get()) : std::vector<std::uint8_t> {};
}

}
