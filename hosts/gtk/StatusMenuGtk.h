#pragma once

#include "platform/Menu.h"

#include <functional>
#include <gtkmm.h>
#include <memory>
#include <vector>

namespace brevanta {

// A GTK menu that follows a Menu value. Key equivalents are shown with Ctrl and belong to no window, so that nothing is
// grabbed; tags have no counterpart here. Main thread only.
class StatusMenuGtk {
public:
    // `chosen` is called from inside GTK's own event handling, with items that can be chosen only.
    explicit StatusMenuGtk(std::function<void(MenuItemId)> chosen);
    StatusMenuGtk(const StatusMenuGtk&) = delete;
    StatusMenuGtk& operator=(const StatusMenuGtk&) = delete;

    // Changes rows where they are; makes them anew only when their number or their kinds differ.
    void update(const Menu& menu);

    [[nodiscard]] GtkMenu* widget() { return m_menu.gobj(); }

private:
    [[nodiscard]] bool hasShapeOf(const Menu& menu) const;
    void rebuild(const Menu& menu);
    [[nodiscard]] std::unique_ptr<Gtk::MenuItem> newRow(const MenuItem& item, std::size_t index);
    void updateRow(Gtk::MenuItem& row, const MenuItem& before, const MenuItem& after);
    void setKeyEquivalent(Gtk::MenuItem& row, const std::string& before, const std::string& after);
    void choose(std::size_t index) const;

    std::function<void(MenuItemId)> m_chosen;
    Glib::RefPtr<Gtk::AccelGroup> m_keys;
    Gtk::Menu m_menu;
    std::vector<std::unique_ptr<Gtk::MenuItem>> m_rows;
    Menu m_shown;
};

}
