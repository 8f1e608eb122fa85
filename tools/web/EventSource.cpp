#include "web/EventSource.h"

#include <algorithm>
#include <glib-unix.h>
#include <utility>

namespace brevanta::web {

using Action = std::function<void()>;

template <typename Function> static void deleteFunction(gpointer data) { delete static_cast<Function*>(data); }

static gboolean runOnce(gpointer data)
{
    (*static_cast<Action*>(data))();
    return G_SOURCE_REMOVE;
}

static gboolean runAndGoOn(gpointer data)
{
    (*static_cast<Action*>(data))();
    return G_SOURCE_CONTINUE;
}

static gboolean runForDescriptor(gint, GIOCondition events, gpointer data)
{
    const auto next = (*static_cast<EventSource::Callback*>(data))(events);
    return next == EventSource::Next::goOn ? G_SOURCE_CONTINUE : G_SOURCE_REMOVE;
}

EventSource EventSource::after(std::chrono::milliseconds time, Action action)
{
    auto* source = g_timeout_source_new(static_cast<guint>(std::max<std::chrono::milliseconds::rep>(time.count(), 0)));
    g_source_set_callback(source, runOnce, new Action(std::move(action)), deleteFunction<Action>);
    return EventSource(source);
}

EventSource EventSource::whenever(int descriptor, GIOCondition events, Callback callback)
{
    auto* source = g_unix_fd_source_new(descriptor, events);
    // The type of a descriptor's callback is another one than g_source_set_callback has: see g_unix_fd_source_new.
    g_source_set_callback(source, reinterpret_cast<GSourceFunc>(reinterpret_cast<void*>(runForDescriptor)),
        new Callback(std::move(callback)), deleteFunction<Callback>);
    return EventSource(source);
}

EventSource EventSource::whenSignalled(int signalNumber, Action action)
{
    auto* source = g_unix_signal_source_new(signalNumber);
    g_source_set_callback(source, runAndGoOn, new Action(std::move(action)), deleteFunction<Action>);
    return EventSource(source);
}

}
