#include "gtk/WindowMenuGtk.h"

#include "platform/MenuChoice.h"

#include <memory>
#include <utility>

namespace brevanta {

WindowMenuGtk::WindowMenuGtk()
    : m_menu([this](MenuItemId id) { choose(id); })
    , m_keys(Gtk::AccelGroup::create())
{
    gtk_menu_item_set_submenu(m_title.gobj(), GTK_WIDGET(m_menu.widget()));
    m_title.show();
    m_bar.append(m_title);
}

WindowMenuGtk::~WindowMenuGtk() { m_title.unset_submenu(); }

void WindowMenuGtk::show(const Menu& menu)
{
    m_menu.update(menu);
    m_shown = menu;
    for (const auto& item : menu.items) {
        if (item.keyEquivalent.size() != 1 || !m_letters.insert(item.keyEquivalent.front()).second)
            continue;
        const char letter = item.keyEquivalent.front();
        addControlKey(*m_keys.operator->(), letter, [this, letter] { return pressed(letter); });
    }
}

bool WindowMenuGtk::pressed(char letter)
{
    const auto item = choiceOfKey(m_shown, { &letter, 1 });
    if (item == MenuItemId::none)
        return false;
    choose(item);
    return true;
}

void WindowMenuGtk::choose(MenuItemId id)
{
    if (m_chosen)
        m_chosen(id);
}

void addControlKey(Gtk::AccelGroup& keys, char letter, std::function<bool()> pressed)
{
    using Pressed = std::function<bool()>;
    auto owned = std::make_unique<Pressed>(std::move(pressed));
    const auto call = +[](GtkAccelGroup*, GObject*, guint, GdkModifierType, gpointer data) -> gboolean {
        return (*static_cast<Pressed*>(data))() ? TRUE : FALSE;
    };
    const auto release
        = +[](gpointer data, GClosure*) { std::unique_ptr<Pressed>(static_cast<Pressed*>(data)).reset(); };
    auto* const closure = g_cclosure_new(G_CALLBACK(call), owned.release(), release);
    // The group takes the closure, which is floating.
    gtk_accel_group_connect(
        keys.gobj(), gdk_unicode_to_keyval(static_cast<guchar>(letter)), GDK_CONTROL_MASK, GtkAccelFlags {}, closure);
}

}
