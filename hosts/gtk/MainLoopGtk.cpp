#include "gtk/MainLoopGtk.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <glib.h>
#include <mutex>
#include <utility>

namespace brevanta {

namespace {

struct SourceDeleter {
    void operator()(GSource* source) const
    {
        g_source_destroy(source);
        g_source_unref(source);
    }
};

// Taken out of the main context with its owner. GLib keeps what a source holds until a dispatch under way returns.
using SourcePtr = std::unique_ptr<GSource, SourceDeleter>;

using Work = std::function<void()>;

gboolean dispatch(GSource*, GSourceFunc callback, gpointer data) { return callback(data); }

// Sources that are ready at the time set for them, and at no other.
GSourceFuncs readyTimeFunctions { nullptr, nullptr, dispatch, nullptr, nullptr, nullptr };

SourcePtr newReadyTimeSource(const char* name)
{
    SourcePtr source(g_source_new(&readyTimeFunctions, sizeof(GSource)));
    g_source_set_static_name(source.get(), name);
    return source;
}

constexpr gint64 never = -1;
constexpr gint64 longestInterval = 1'000'000'000'000'000; // Thirty years of microseconds.

gint64 microseconds(double seconds)
{
    if (!(seconds > 0))
        return 0;
    return static_cast<gint64>(std::ceil(std::min(seconds * 1e6, static_cast<double>(longestInterval))));
}

struct Schedule {
    Work callback;
    TimerRepeat repeat;
    gint64 interval; // Microseconds.
    gint64 due; // By g_get_monotonic_time.

    // The first beat that is still to come.
    void advance(gint64 now)
    {
        if (interval == 0)
            due = now;
        else
            due += interval * (std::max<gint64>(now - due, 0) / interval + 1);
    }
};

gboolean fire(gpointer data)
{
    auto& schedule = *static_cast<Schedule*>(data);
    auto* const source = g_main_current_source();
    if (schedule.repeat == TimerRepeat::once) {
        // Its owner may keep the timer for long; it is over all the same.
        g_source_set_ready_time(source, never);
        std::exchange(schedule.callback, nullptr)();
        return G_SOURCE_CONTINUE;
    }
    schedule.callback();
    schedule.advance(g_get_monotonic_time());
    g_source_set_ready_time(source, schedule.due);
    return G_SOURCE_CONTINUE;
}

class TimerGtk final : public Timer {
public:
    explicit TimerGtk(SourcePtr source)
        : m_source(std::move(source))
    {
    }

private:
    SourcePtr m_source;
};

}

// Shared with the source, whose dispatch may be what destroys the loop.
struct MainLoopGtk::Posted {
    std::mutex mutex;
    std::deque<Work> work;
    SourcePtr source { newReadyTimeSource("brevanta-posted-work") };

    void push(Work piece)
    {
        const std::lock_guard lock(mutex);
        if (!source)
            return; // What is dropped as the loop ends may post once more.
        work.push_back(std::move(piece));
        g_source_set_ready_time(source.get(), 0);
    }

    // Nothing when the queue is empty, after which the source sleeps until the next piece comes.
    Work takeNext()
    {
        const std::lock_guard lock(mutex);
        if (work.empty()) {
            if (source)
                g_source_set_ready_time(source.get(), never);
            return {};
        }
        auto piece = std::move(work.front());
        work.pop_front();
        return piece;
    }

    // One piece at each turn of the loop, so that window events get theirs.
    static gboolean runNext(gpointer data)
    {
        const auto posted = *static_cast<std::shared_ptr<Posted>*>(data);
        if (const auto piece = posted->takeNext())
            piece();
        return G_SOURCE_CONTINUE;
    }

    static void release(gpointer data) { delete static_cast<std::shared_ptr<Posted>*>(data); }
};

MainLoopGtk::MainLoopGtk()
    : m_mainThread(std::this_thread::get_id())
    , m_posted(std::make_shared<Posted>())
{
    auto* const source = m_posted->source.get();
    g_source_set_callback(source, Posted::runNext, new std::shared_ptr<Posted>(m_posted), Posted::release);
    g_source_attach(source, nullptr);
}

MainLoopGtk::~MainLoopGtk()
{
    std::deque<Work> neverRun;
    SourcePtr source;
    const std::lock_guard lock(m_posted->mutex);
    neverRun.swap(m_posted->work);
    source.swap(m_posted->source);
}

void MainLoopGtk::post(std::function<void()> work) { m_posted->push(std::move(work)); }

std::unique_ptr<Timer> MainLoopGtk::startTimer(double seconds, TimerRepeat repeat, std::function<void()> callback)
{
    const auto interval = microseconds(seconds);
    auto source = newReadyTimeSource("brevanta-timer");
    const auto due = g_get_monotonic_time() + interval;
    g_source_set_ready_time(source.get(), due);
    g_source_set_callback(source.get(), fire, new Schedule { std::move(callback), repeat, interval, due },
        [](gpointer data) { delete static_cast<Schedule*>(data); });
    g_source_attach(source.get(), nullptr);
    return std::make_unique<TimerGtk>(std::move(source));
}

bool MainLoopGtk::isMainThread() const { return std::this_thread::get_id() == m_mainThread; }

}
