#pragma once

#include "gtk/MainLoopGtk.h"

#include <functional>
#include <gtest/gtest.h>
#include <gtkmm.h>

namespace brevanta {

// A test with a display of its own, which the whole process shares, and the main loop that serves it.
class DisplayTest : public testing::Test {
protected:
    // Serves the main loop until the condition holds. False when that does not happen within half a minute.
    [[nodiscard]] bool serveUntil(const std::function<bool()>& condition)
    {
        bool timeIsUp = false;
        const auto guard = loop.startTimer(30, TimerRepeat::once, [&] { timeIsUp = true; });
        while (!condition() && !timeIsUp)
            g_main_context_iteration(nullptr, TRUE);
        return condition();
    }

    // Serves the main loop for as long as something that must not happen is given to happen.
    void serveFor(double seconds)
    {
        bool timeIsUp = false;
        const auto guard = loop.startTimer(seconds, TimerRepeat::once, [&] { timeIsUp = true; });
        while (!timeIsUp)
            g_main_context_iteration(nullptr, TRUE);
    }

    MainLoopGtk loop;
};

// Every widget of this type below another one, itself included.
template <typename T> void collectWidgets(Gtk::Widget& widget, std::vector<T*>& found)
{
    if (auto* const match = dynamic_cast<T*>(&widget))
        found.push_back(match);
    if (auto* const container = dynamic_cast<Gtk::Container*>(&widget)) {
        for (auto* const child : container->get_children())
            collectWidgets(*child, found);
    }
}

template <typename T> [[nodiscard]] std::vector<T*> widgetsIn(Gtk::Widget& widget)
{
    std::vector<T*> found;
    collectWidgets(widget, found);
    return found;
}

}
