#include "gtk/StatusMenuGtk.h"

#include "gtk/GLibText.h"
#include "platform/MenuChoice.h"

#include <algorithm>
#include <utility>

namespace brevanta {

namespace {

// 0 when the text is not one letter.
guint keyOf(const std::string& keyEquivalent)
{
    return keyEquivalent.size() == 1 ? gdk_unicode_to_keyval(static_cast<guchar>(keyEquivalent.front())) : 0;
}

}

StatusMenuGtk::StatusMenuGtk(std::function<void(MenuItemId)> chosen)
    : m_chosen(std::move(chosen))
    , m_keys(Gtk::AccelGroup::create())
{
    m_menu.set_accel_group(m_keys);
}

void StatusMenuGtk::update(const Menu& menu)
{
    if (!hasShapeOf(menu))
        rebuild(menu);
    for (std::size_t i = 0; i < m_rows.size(); ++i)
        updateRow(*m_rows[i], m_shown.items[i], menu.items[i]);
    m_shown = menu;
}

bool StatusMenuGtk::hasShapeOf(const Menu& menu) const
{
    return std::ranges::equal(m_shown.items, menu.items, {}, &MenuItem::kind, &MenuItem::kind);
}

void StatusMenuGtk::rebuild(const Menu& menu)
{
    m_rows.clear(); // Each row leaves the menu as it goes.
    m_shown = {};
    for (const auto& item : menu.items) {
        m_rows.push_back(newRow(item, m_rows.size()));
        m_menu.append(*m_rows.back());
        m_rows.back()->show();
        m_shown.items.push_back({ .kind = item.kind }); // As a new row is: visible, enabled and without a title.
    }
}

std::unique_ptr<Gtk::MenuItem> StatusMenuGtk::newRow(const MenuItem& item, std::size_t index)
{
    if (item.kind == MenuItemKind::separator)
        return std::make_unique<Gtk::SeparatorMenuItem>();
    auto row = std::make_unique<Gtk::MenuItem>("", true);
    row->signal_activate().connect([this, index] { choose(index); });
    return row;
}

void StatusMenuGtk::updateRow(Gtk::MenuItem& row, const MenuItem& before, const MenuItem& after)
{
    if (before.visible != after.visible)
        row.set_visible(after.visible);
    if (after.kind == MenuItemKind::separator)
        return;
    if (before.title != after.title)
        row.set_label(withoutMnemonics(after.title));
    if (before.enabled != after.enabled)
        row.set_sensitive(after.enabled);
    if (before.keyEquivalent != after.keyEquivalent)
        setKeyEquivalent(row, before.keyEquivalent, after.keyEquivalent);
}

void StatusMenuGtk::setKeyEquivalent(Gtk::MenuItem& row, const std::string& before, const std::string& after)
{
    if (const auto key = keyOf(before))
        row.remove_accelerator(m_keys, key, Gdk::CONTROL_MASK);
    if (const auto key = keyOf(after))
        row.add_accelerator("activate", m_keys, key, Gdk::CONTROL_MASK, Gtk::ACCEL_VISIBLE);
}

void StatusMenuGtk::choose(std::size_t index) const
{
    // The bus lets anybody activate a row that cannot be chosen on screen, or a row that has changed meanwhile.
    const auto& item = m_shown.items[index];
    if (canBeChosen(item))
        m_chosen(item.id);
}

}
