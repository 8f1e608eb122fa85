#include "support/Await.h"

#include <glib.h>

namespace brevanta::functional {

static constexpr Milliseconds askingInterval { 20 };

static gboolean noteThatTimeIsUp(gpointer isTimeUp)
{
    *static_cast<bool*>(isTimeUp) = true;
    return G_SOURCE_CONTINUE;
}

bool awaitUntil(const std::function<bool()>& condition, Milliseconds within)
{
    bool isTimeUp = false;
    const SourceGuard timer(g_timeout_add(static_cast<guint>(within.count()), noteThatTimeIsUp, &isTimeUp));
    while (!condition()) {
        if (isTimeUp)
            return false;
        g_main_context_iteration(nullptr, TRUE);
    }
    return true;
}

static gboolean wakeUp(gpointer) { return G_SOURCE_CONTINUE; }

bool awaitByAsking(const std::function<bool()>& condition, Milliseconds within)
{
    const SourceGuard ticker(g_timeout_add(static_cast<guint>(askingInterval.count()), wakeUp, nullptr));
    return awaitUntil(condition, within);
}

void SourceGuard::reset(unsigned id)
{
    if (m_id)
        g_source_remove(m_id);
    m_id = id;
}

}
