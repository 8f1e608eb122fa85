#pragma once

#include "platform/MainLoop.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <thread>
#include <vector>

namespace brevanta {

// What holds for every MainLoop. A bench gives:
//   MainLoop& loop();
//   double now();                    seconds by which the loop's timers run
//   bool serveUntil(condition);      serves the loop; false when the condition does not come true
//   void serveForATurn();            serves what is ready now, without waiting
//   void stall(double seconds);      lets time pass while the loop is not served
//   void end();                      destroys the loop
template <typename Bench> class MainLoopContract : public testing::Test {
protected:
    static constexpr double tick = 0.02; // Seconds.

    Bench m_bench;
};

TYPED_TEST_SUITE_P(MainLoopContract);

TYPED_TEST_P(MainLoopContract, RunsPostedWorkInOrderAndNeverInsideThePosting)
{
    std::vector<int> ran;
    auto& loop = this->m_bench.loop();
    loop.post([&] {
        ran.push_back(1);
        loop.post([&] { ran.push_back(4); });
        ran.push_back(2);
    });
    loop.post([&] { ran.push_back(3); });
    EXPECT_TRUE(ran.empty());
    ASSERT_TRUE(this->m_bench.serveUntil([&] { return ran.size() == 4; }));
    EXPECT_EQ(ran, (std::vector { 1, 2, 3, 4 }));
}

TYPED_TEST_P(MainLoopContract, RunsWhatAnotherThreadPostsOnTheMainThread)
{
    auto& loop = this->m_bench.loop();
    std::thread::id ranOn;
    bool mainThereWhenPosting = true;
    std::thread([&] {
        mainThereWhenPosting = loop.isMainThread();
        loop.post([&] { ranOn = std::this_thread::get_id(); });
    }).join();
    ASSERT_TRUE(this->m_bench.serveUntil([&] { return ranOn != std::thread::id {}; }));
    EXPECT_EQ(ranOn, std::this_thread::get_id());
    EXPECT_TRUE(loop.isMainThread());
    EXPECT_FALSE(mainThereWhenPosting);
}

TYPED_TEST_P(MainLoopContract, DestroysWhatAPieceOfWorkHoldsAsSoonAsItHasRun)
{
    auto held = std::make_shared<int>(0);
    const std::weak_ptr<int> watched = held;
    bool laterRan = false;
    this->m_bench.loop().post([held = std::move(held)] { });
    this->m_bench.loop().post([&] { laterRan = watched.expired(); });
    EXPECT_TRUE(this->m_bench.serveUntil([&] { return laterRan; }));
}

TYPED_TEST_P(MainLoopContract, DestroysWorkThatIsStillQueuedAtTheEndWithoutRunningIt)
{
    auto held = std::make_shared<int>(0);
    const std::weak_ptr<int> watched = held;
    bool ran = false;
    this->m_bench.loop().post([held = std::move(held), &ran] { ran = true; });
    this->m_bench.end();
    EXPECT_TRUE(watched.expired());
    EXPECT_FALSE(ran);
}

TYPED_TEST_P(MainLoopContract, AOneShotTimerFiresOnceAndNeverEarly)
{
    const double begin = this->m_bench.now();
    double firedAt = 0;
    int count = 0;
    const auto timer = this->m_bench.loop().startTimer(this->tick, TimerRepeat::once, [&] {
        firedAt = this->m_bench.now();
        ++count;
    });
    ASSERT_TRUE(this->m_bench.serveUntil([&] { return count > 0; }));
    EXPECT_GE(firedAt - begin, this->tick * 0.999);
    const auto later = this->m_bench.loop().startTimer(3 * this->tick, TimerRepeat::once, [&] { count += 100; });
    ASSERT_TRUE(this->m_bench.serveUntil([&] { return count >= 100; }));
    EXPECT_EQ(count, 101);
}

TYPED_TEST_P(MainLoopContract, ARepeatingTimerGoesOnUntilItIsDestroyedInItsOwnCallback)
{
    int count = 0;
    std::unique_ptr<Timer> timer;
    auto held = std::make_shared<int>(7);
    const std::weak_ptr<int> watched = held;
    timer = this->m_bench.loop().startTimer(this->tick, TimerRepeat::forever, [&, held = std::move(held)] {
        if (++count < 3)
            return;
        timer.reset();
        count += *held; // What the callback holds lives until it has returned.
    });
    ASSERT_TRUE(this->m_bench.serveUntil([&] { return count == 10; }));
    EXPECT_TRUE(watched.expired());
    bool passed = false;
    const auto later = this->m_bench.loop().startTimer(3 * this->tick, TimerRepeat::once, [&] { passed = true; });
    ASSERT_TRUE(this->m_bench.serveUntil([&] { return passed; }));
    EXPECT_EQ(count, 10);
}

TYPED_TEST_P(MainLoopContract, ADestroyedTimerDoesNotFire)
{
    bool fired = false;
    auto timer = this->m_bench.loop().startTimer(0, TimerRepeat::once, [&] { fired = true; });
    timer.reset();
    bool passed = false;
    const auto later = this->m_bench.loop().startTimer(this->tick, TimerRepeat::once, [&] { passed = true; });
    ASSERT_TRUE(this->m_bench.serveUntil([&] { return passed; }));
    EXPECT_FALSE(fired);
}

TYPED_TEST_P(MainLoopContract, TimesBelowZeroAndNoNumbersCountAsZeroAndFireAfterTheCall)
{
    for (const double seconds : { 0.0, -1.0, -std::numeric_limits<double>::infinity(), std::nan("") }) {
        bool fired = false;
        const auto timer = this->m_bench.loop().startTimer(seconds, TimerRepeat::once, [&] { fired = true; });
        EXPECT_FALSE(fired) << seconds;
        EXPECT_TRUE(this->m_bench.serveUntil([&] { return fired; })) << seconds;
    }
}

TYPED_TEST_P(MainLoopContract, ATimerOfAllEternityIsStartedAndDoesNotFire)
{
    for (const double seconds : { 1e300, std::numeric_limits<double>::infinity() }) {
        bool fired = false;
        const auto timer = this->m_bench.loop().startTimer(seconds, TimerRepeat::forever, [&] { fired = true; });
        this->m_bench.serveForATurn();
        EXPECT_FALSE(fired) << seconds;
    }
}

TYPED_TEST_P(MainLoopContract, ARepeatingTimerDoesNotMakeUpForTheTicksThatItMissed)
{
    int count = 0;
    const auto timer = this->m_bench.loop().startTimer(1, TimerRepeat::forever, [&] { ++count; });
    this->m_bench.stall(2.5);
    this->m_bench.serveForATurn();
    EXPECT_EQ(count, 1);
}

REGISTER_TYPED_TEST_SUITE_P(MainLoopContract, RunsPostedWorkInOrderAndNeverInsideThePosting,
    RunsWhatAnotherThreadPostsOnTheMainThread, DestroysWhatAPieceOfWorkHoldsAsSoonAsItHasRun,
    DestroysWorkThatIsStillQueuedAtTheEndWithoutRunningIt, AOneShotTimerFiresOnceAndNeverEarly,
    ARepeatingTimerGoesOnUntilItIsDestroyedInItsOwnCallback, ADestroyedTimerDoesNotFire,
    TimesBelowZeroAndNoNumbersCountAsZeroAndFireAfterTheCall, ATimerOfAllEternityIsStartedAndDoesNotFire,
    ARepeatingTimerDoesNotMakeUpForTheTicksThatItMissed);

}
