#include "base/SerialQueue.h"

#include <atomic>
#include <future>
#include <gtest/gtest.h>
#include <vector>

namespace brevanta {

TEST(SerialQueue, RunsWorkOfManyThreadsOneAtATimeAndEachThreadsInOrder)
{
    static constexpr int threads = 4;
    static constexpr int perThread = 500;
    std::vector<std::pair<int, int>> ran; // Guarded by the queue itself: that is what is tested.
    std::promise<void> done;
    {
        SerialQueue queue;
        std::vector<std::thread> posters;
        for (int thread = 0; thread < threads; ++thread) {
            posters.emplace_back([&, thread] {
                for (int index = 0; index < perThread; ++index)
                    queue.post([&ran, &done, thread, index] {
                        ran.emplace_back(thread, index);
                        if (ran.size() == threads * perThread)
                            done.set_value();
                    });
            });
        }
        for (auto& poster : posters)
            poster.join();
        done.get_future().wait();
    }
    std::vector<int> next(threads, 0);
    for (const auto& [thread, index] : ran)
        EXPECT_EQ(index, next[static_cast<std::size_t>(thread)]++);
}

TEST(SerialQueue, NeverRunsWorkInsidePost)
{
    SerialQueue queue;
    std::promise<std::thread::id> ranOn;
    std::promise<void> inner;
    bool nestedRan = false;
    queue.post([&] {
        queue.post([&] {
            nestedRan = true;
            inner.set_value();
        });
        EXPECT_FALSE(nestedRan);
        ranOn.set_value(std::this_thread::get_id());
    });
    EXPECT_NE(ranOn.get_future().get(), std::this_thread::get_id());
    inner.get_future().wait();
}

TEST(SerialQueue, EndsAfterTheWorkThatRunsAndDropsTheRest)
{
    std::promise<void> running;
    std::promise<void> mayEnd;
    const auto dropped = std::make_shared<int>(0);
    std::atomic<int> ran { 0 };
    std::thread release;
    {
        SerialQueue queue;
        queue.post([&] {
            running.set_value();
            mayEnd.get_future().wait();
            ++ran;
        });
        running.get_future().wait();
        queue.post([&ran, dropped] { ++ran; });
        // The queue's destructor has dropped the waiting work before the running work is let go.
        release = std::thread([&] {
            while (dropped.use_count() > 1)
                std::this_thread::yield();
            mayEnd.set_value();
        });
    }
    release.join();
    EXPECT_EQ(ran, 1);
}

TEST(SerialQueue, PreparesItsThreadBeforeAnyWork)
{
    std::atomic<bool> prepared { false };
    SerialQueue queue([&] { prepared = true; });
    std::promise<bool> seen;
    queue.post([&] { seen.set_value(prepared); });
    EXPECT_TRUE(seen.get_future().get());
}

}
