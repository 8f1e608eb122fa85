#include "gtk/MainLoopGtk.h"
#include "host/MainLoopContract.h"

#include <chrono>
#include <glib.h>
#include <optional>

namespace brevanta {

namespace {

class MainLoopGtkBench {
public:
    MainLoopGtkBench() { m_loop.emplace(); }

    MainLoop& loop() { return *m_loop; }
    [[nodiscard]] double now() const { return static_cast<double>(g_get_monotonic_time()) / 1e6; }

    bool serveUntil(const std::function<bool()>& condition)
    {
        bool timeIsUp = false;
        const auto guard = m_loop->startTimer(20, TimerRepeat::once, [&] { timeIsUp = true; });
        while (!condition() && !timeIsUp)
            g_main_context_iteration(nullptr, TRUE);
        return condition();
    }

    void serveForATurn()
    {
        while (g_main_context_iteration(nullptr, FALSE)) { }
    }

    void stall(double seconds) { std::this_thread::sleep_for(std::chrono::duration<double>(seconds)); }
    void end() { m_loop.reset(); }

private:
    std::optional<MainLoopGtk> m_loop;
};

}

INSTANTIATE_TYPED_TEST_SUITE_P(Gtk, MainLoopContract, MainLoopGtkBench);

TEST(MainLoopGtkTest, WorkThatPostsItselfForeverDoesNotShutWindowEventsOut)
{
    MainLoopGtk loop;
    bool eventCame = false;
    g_idle_add_full(
        G_PRIORITY_DEFAULT,
        [](gpointer came) -> gboolean {
            *static_cast<bool*>(came) = true;
            return G_SOURCE_REMOVE;
        },
        &eventCame, nullptr);
    std::function<void()> again = [&] { loop.post(again); };
    loop.post(again);
    for (int turn = 0; turn < 10; ++turn)
        g_main_context_iteration(nullptr, FALSE);
    EXPECT_TRUE(eventCame);
}

TEST(MainLoopGtkTest, ATimerMayOutliveTheLoop)
{
    auto loop = std::make_unique<MainLoopGtk>();
    const auto timer = loop->startTimer(60, TimerRepeat::forever, [] { });
    loop.reset();
    SUCCEED() << "the timer goes after the loop";
}

TEST(MainLoopGtkTest, AnIdleLoopSleeps)
{
    MainLoopGtk loop;
    bool ran = false;
    loop.post([&] { ran = true; });
    while (!ran)
        g_main_context_iteration(nullptr, TRUE);
    g_main_context_iteration(nullptr, FALSE); // The turn that finds the queue empty.
    EXPECT_FALSE(g_main_context_pending(nullptr));
}

}
