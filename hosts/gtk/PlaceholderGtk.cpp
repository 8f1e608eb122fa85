#include "gtk/PlaceholderGtk.h"

#include "gtk/ApplicationIcon.h"
#include "gtk/GLibText.h"

namespace brevanta {

namespace {

constexpr int iconSize = 96;
constexpr int spacing = 14;
constexpr int labelPoints = 15;
constexpr int labelColumns = 60;

}

PlaceholderGtk::PlaceholderGtk(const std::filesystem::path& resources)
{
    showIcon(resources);

    Pango::AttrList attributes;
    auto size = Pango::Attribute::create_attr_size(labelPoints * PANGO_SCALE);
    attributes.insert(size);
    m_label.set_attributes(attributes);
    m_label.set_justify(Gtk::JUSTIFY_CENTER);
    m_label.set_line_wrap(true);
    m_label.set_max_width_chars(labelColumns);

    m_button.set_halign(Gtk::ALIGN_CENTER);
    m_button.signal_clicked().connect([this] {
        if (const auto handler = m_buttonHandler) // It may put another one in its place.
            handler();
    });

    m_content.set_spacing(spacing);
    m_content.set_halign(Gtk::ALIGN_CENTER);
    m_content.set_valign(Gtk::ALIGN_CENTER);
    m_content.add(m_icon);
    m_content.add(m_label);
    m_content.add(m_button);
    m_label.show();

    m_ground.get_style_context()->add_class("background");
    m_ground.add(m_content);
    m_ground.show();
}

void PlaceholderGtk::show(const PlaceholderContent& content)
{
    m_label.set_text(validUtf8(content.label));
    m_button.set_label(validUtf8(content.button));
    m_button.set_visible(!content.button.empty());
    m_content.show();
    m_ground.show();
}

void PlaceholderGtk::hide() { m_ground.hide(); }

void PlaceholderGtk::showIcon(const std::filesystem::path& resources)
{
    const auto scale = m_ground.get_scale_factor();
    const auto icon = applicationIcon(resources, iconSize, scale);
    if (!icon)
        return; // The window has logged why.
    showApplicationIcon(m_icon, *icon, scale);
}

}
