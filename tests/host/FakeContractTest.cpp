#include "fakes/FakeMainLoop.h"
#include "fakes/FakePorts.h"
#include "host/MainLoopContract.h"
#include "host/UserDefaultsContract.h"

#include <optional>

namespace brevanta {

namespace {

class FakeMainLoopBench {
public:
    FakeMainLoopBench() { m_loop.emplace(m_clock); }

    MainLoop& loop() { return *m_loop; }
    [[nodiscard]] double now() const { return m_clock.continuousSeconds(); }
    bool serveUntil(const std::function<bool()>& condition)
    {
        for (int step = 0; step < 1000 && !condition(); ++step)
            m_loop->advance(0.001);
        return condition();
    }
    void serveForATurn() { m_loop->advance(0); }
    void stall(double seconds) { m_clock.setContinuousSeconds(m_clock.continuousSeconds() + seconds); }
    void end() { m_loop.reset(); }

private:
    FakeClock m_clock;
    std::optional<FakeMainLoop> m_loop;
};

class FakeUserDefaultsBench {
public:
    UserDefaults& defaults() { return m_defaults; }
    void startAnew() { } // The fake is the store itself.

private:
    FakeUserDefaults m_defaults;
};

}

INSTANTIATE_TYPED_TEST_SUITE_P(Fake, MainLoopContract, FakeMainLoopBench);
INSTANTIATE_TYPED_TEST_SUITE_P(Fake, UserDefaultsContract, FakeUserDefaultsBench);

}
