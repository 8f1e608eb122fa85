#include "base/SerialQueue.h"
#include "daemon/SharedBlockStateWriter.h"
#include "fakes/FakeFileStore.h"
#include "support/StatusReply.h"

#include <gtest/gtest.h>
#include <semaphore>

namespace brevanta {

TEST(SharedBlockStateThreads, SubmissionsDuringAWriteNeverWaitAndComeToOneMore)
{
    constexpr int submissions = 10;
    FakeFileStore files;
    std::counting_semaphore<> begun { 0 };
    std::counting_semaphore<> mayWrite { 0 };
    files.whileWriting = [&] {
        begun.release();
        mayWrite.acquire();
    };
    SerialQueue queue;
    SharedBlockStateWriter writer(
        { .queue = queue, .files = files, .container = [] { return "/group"; }, .fileName = "state" });
    writer.submit(statusWith({ { "block_reason", "0" } }));
    begun.acquire();
    for (int number = 1; number <= submissions; ++number)
        writer.submit(statusWith({ { "block_reason", std::to_string(number) } }));
    mayWrite.release(2);
    std::binary_semaphore drained { 0 };
    queue.post([&] { drained.release(); });
    drained.acquire();
    ASSERT_EQ(files.writes().size(), 2U);
    EXPECT_EQ(Json::parse(*files.contents("/group/state")).at("blockReason"), std::to_string(submissions));
}

TEST(SharedBlockStateThreads, AWriterMayEndWhileItsWorkIsQueuedOrRuns)
{
    FakeFileStore files;
    SerialQueue queue;
    for (int round = 0; round < 200; ++round) {
        SharedBlockStateWriter writer(
            { .queue = queue, .files = files, .container = [] { return "/group"; }, .fileName = "state" });
        writer.submit(statusWith({ { "energy", round } }));
        writer.submit(statusWith({ { "block_reason", std::to_string(round) } }));
    }
    std::binary_semaphore drained { 0 };
    queue.post([&] { drained.release(); });
    drained.acquire();
    EXPECT_FALSE(files.writes().empty());
}

}
