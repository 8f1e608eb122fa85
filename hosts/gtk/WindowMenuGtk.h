#pragma once

#include "gtk/StatusMenuGtk.h"

#include <functional>
#include <gtkmm.h>
#include <set>

namespace brevanta {

enum class WindowMenuVisibility { hidden, shown };

// What the main window has of the status item's menu: its keys, and where no bar shows the item, the menu itself, below
// a title in a menu bar of the window's. Main thread only.
class WindowMenuGtk {
public:
    WindowMenuGtk();
    ~WindowMenuGtk();
    WindowMenuGtk(const WindowMenuGtk&) = delete;
    WindowMenuGtk& operator=(const WindowMenuGtk&) = delete;

    void show(const Menu& menu);
    void setVisibility(WindowMenuVisibility visibility)
    {
        m_bar.set_visible(visibility == WindowMenuVisibility::shown);
    }

    // Called from inside GTK's own event handling, with items that can be chosen only. Replaces the handler given
    // before; an empty one ends the calls.
    void setChoiceHandler(std::function<void(MenuItemId)> handler) { m_chosen = std::move(handler); }

    // For the top of the window. Lives as long as this object.
    [[nodiscard]] Gtk::Widget& bar() { return m_bar; }

    // For the window: each key works whatever has the focus in it, also while the menu cannot be seen. A key whose item
    // cannot be chosen just now goes to what has the focus.
    [[nodiscard]] const Glib::RefPtr<Gtk::AccelGroup>& keys() const { return m_keys; }

private:
    [[nodiscard]] bool pressed(char letter);
    void choose(MenuItemId id);

    std::function<void(MenuItemId)> m_chosen;
    StatusMenuGtk m_menu;
    Gtk::MenuItem m_title { "Brevanta" };
    Gtk::MenuBar m_bar;
    Glib::RefPtr<Gtk::AccelGroup> m_keys;
    std::set<char> m_letters; // That are among the keys.
    Menu m_shown;
};

// Adds Ctrl and the letter. GTK asks the keys of a window before the widget that has the focus; a key whose function
// returns false goes on to that.
void addControlKey(Gtk::AccelGroup& keys, char letter, std::function<bool()> pressed);

}
