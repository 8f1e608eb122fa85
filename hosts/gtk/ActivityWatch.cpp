#include "gtk/ActivityWatch.h"

#include <gtk/gtk.h>
#include <memory>
#include <utility>

namespace brevanta {

namespace {

// The keyboard leaves one window before it comes to the next: for a moment, longer on a busy machine, no window has it.
constexpr guint betweenTwoWindowsMilliseconds = 250;

struct ListDeleter {
    void operator()(GList* list) const { g_list_free(list); }
};

bool isAnyWindowActive()
{
    const std::unique_ptr<GList, ListDeleter> windows(gtk_window_list_toplevels());
    for (const auto* entry = windows.get(); entry; entry = entry->next) {
        if (gtk_window_is_active(GTK_WINDOW(entry->data)))
            return true;
    }
    return false;
}

}

ActivityWatch::ActivityWatch(std::function<void()> onActive)
    : m_onActive(std::move(onActive))
{
    // The windows that are yet to come have to be heard too, so the signal itself is watched and not one window.
    const auto hook = [](GSignalInvocationHint*, guint, const GValue*, gpointer self) -> gboolean {
        static_cast<ActivityWatch*>(self)->focusMoved();
        return TRUE;
    };
    auto* const widgets = g_type_class_ref(GTK_TYPE_WIDGET); // Without it the signals are not there yet.
    m_focusIn = g_signal_lookup("focus-in-event", GTK_TYPE_WIDGET);
    m_focusOut = g_signal_lookup("focus-out-event", GTK_TYPE_WIDGET);
    m_inHook = g_signal_add_emission_hook(m_focusIn, 0, hook, this, nullptr);
    m_outHook = g_signal_add_emission_hook(m_focusOut, 0, hook, this, nullptr);
    g_type_class_unref(widgets);
}

ActivityWatch::~ActivityWatch()
{
    g_signal_remove_emission_hook(m_focusIn, m_inHook);
    g_signal_remove_emission_hook(m_focusOut, m_outHook);
    if (m_look)
        g_source_remove(m_look);
}

void ActivityWatch::focusMoved()
{
    if (m_look)
        return;
    m_look = g_timeout_add(
        betweenTwoWindowsMilliseconds,
        [](gpointer self) -> gboolean {
            static_cast<ActivityWatch*>(self)->look();
            return G_SOURCE_REMOVE;
        },
        this);
}

void ActivityWatch::look()
{
    m_look = 0;
    const bool wasActive = std::exchange(m_isActive, isAnyWindowActive());
    if (m_isActive && !wasActive)
        m_onActive();
}

}
