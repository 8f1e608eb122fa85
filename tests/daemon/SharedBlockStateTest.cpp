#include "daemon/SharedBlockStateWriter.h"

#include "fakes/FakeFileStore.h"
#include "fakes/ManualExecutor.h"
#include "support/StatusReply.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

std::string encoded(const Json& additions)
{
    std::string out;
    appendSharedBlockState(out, sharedBlockState(*statusWith(additions)));
    return out;
}

std::shared_ptr<const BlockingStatus> statusWithReason(const std::string& reason)
{
    return statusWith({ { "block_reason", reason } });
}

class SharedBlockStateWriterTest : public testing::Test {
protected:
    const std::filesystem::path file { "/group/block_state.json" };

    void submit(const std::shared_ptr<const BlockingStatus>& status)
    {
        writer->submit(status);
        queue.runAll();
    }

    [[nodiscard]] std::string writtenReason() const
    {
        return Json::parse(files.contents(file).value_or("{}")).value("blockReason", "");
    }

    ManualExecutor queue;
    FakeFileStore files;
    std::optional<std::filesystem::path> folder { "/group" };
    std::unique_ptr<SharedBlockStateWriter> writer
        = std::make_unique<SharedBlockStateWriter>(SharedBlockStateWriter::Dependencies {
            .queue = queue, .files = files, .container = [this] { return folder; }, .fileName = "block_state.json" });
};

}

TEST(SharedBlockState, TheFileHasEveryFieldUnderItsNameInTheRecordsOrder)
{
    EXPECT_EQ(encoded({ { "should_block", true }, { "blocked_domains", { "a.example", "b\"\\\u2028" } },
                  { "blocked_ips", { "192.0.2.1", "2001:db8::1" } }, { "blocked_apps", { "not.in.it" } },
                  { "auto_track_domains", { "t.example" } }, { "auto_track_apps", { "nor.this" } },
                  { "metered_ip_prefixes", { "192.0.2.0/24" } }, { "metered_domains", { "m.example" } },
                  { "api_base_url", "https://api.example/v1" }, { "auth_token", "tok\n" }, { "block_reason", "Grüße" },
                  { "lease_boot_session_uuid", "B-1" }, { "lease_until_uptime_ns", 18446744073709551615ULL } }),
        R"({"shouldBlock":true,"blockedDomains":["a.example","b\"\\\u2028"],"blockedIPs":["192.0.2.1","2001:db8::1"],)"
        R"("autoTrackDomains":["t.example"],"meteredIPPrefixes":["192.0.2.0/24"],"meteredDomains":["m.example"],)"
        R"("apiBaseUrl":"https://api.example/v1","authToken":"tok\n","blockReason":"Grüße",)"
        R"("leaseBootSessionUUID":"B-1","leaseUntilUptimeNs":18446744073709551615})");
}

TEST(SharedBlockState, WhatIsAbsentIsLeftOut)
{
    EXPECT_EQ(encoded({ { "should_block", false } }),
        R"({"shouldBlock":false,"blockedDomains":[],"blockedIPs":[],"autoTrackDomains":[],"meteredIPPrefixes":[],)"
        R"("meteredDomains":[]})");
}

TEST(SharedBlockState, OnlyTheDevelopmentEnvironmentHasAFileOfItsOwn)
{
    EXPECT_EQ(sharedBlockStateFileName("dev"), "block_state.dev.json");
    for (const auto* environment : { "prod", "", "DEV", "development" })
        EXPECT_EQ(sharedBlockStateFileName(environment), "block_state.json") << environment;
}

TEST_F(SharedBlockStateWriterTest, ABurstIsOneWriteOfTheNewestStateThatOnlyTheUserMayRead)
{
    for (int number = 1; number <= 10; ++number)
        writer->submit(statusWithReason(std::to_string(number)));
    EXPECT_EQ(queue.pending(), 1U);
    EXPECT_TRUE(files.writes().empty()) << "nothing is written where it was submitted";
    queue.runAll();
    ASSERT_EQ(files.writes().size(), 1U);
    EXPECT_EQ(writtenReason(), "10");
    EXPECT_EQ(files.permissions(file), FilePermissions::ownerOnly);
}

TEST_F(SharedBlockStateWriterTest, WhatArrivesDuringAWriteIsWrittenAfterItWithoutAnotherDrain)
{
    std::vector<std::string> arriving { "2", "3" };
    files.whileWriting = [&] {
        for (const auto& reason : std::exchange(arriving, {}))
            writer->submit(statusWithReason(reason));
    };
    writer->submit(statusWithReason("1"));
    EXPECT_TRUE(queue.runOne());
    EXPECT_EQ(queue.pending(), 0U);
    EXPECT_EQ(files.writes().size(), 2U);
    EXPECT_EQ(writtenReason(), "3");
    submit(statusWithReason("4"));
    EXPECT_EQ(writtenReason(), "4") << "the drain before has ended, and this is another one";
}

TEST_F(SharedBlockStateWriterTest, AStateThatTheFileHoldsIsWrittenAgainOnlyWhenSomebodyChangedTheFile)
{
    const auto status = statusWithReason("kept");
    submit(status);
    submit(status);
    submit(statusWith({ { "block_reason", "kept" }, { "energy", 17 }, { "blocked_apps", { "app" } } }));
    EXPECT_EQ(files.writes().size(), 1U) << "nothing of the record has changed";
    files.replaceFromOutside(file, "{}");
    submit(status);
    EXPECT_EQ(files.writes().size(), 2U);
    files.removeFromOutside(file);
    submit(status);
    EXPECT_EQ(files.writes().size(), 3U);
    EXPECT_EQ(writtenReason(), "kept");
}

TEST_F(SharedBlockStateWriterTest, EveryFieldOfTheRecordCountsAsAChange)
{
    const Json fields { { "should_block", false }, { "blocked_domains", { "a" } }, { "blocked_ips", { "a" } },
        { "auto_track_domains", { "a" } }, { "metered_ip_prefixes", { "a" } }, { "metered_domains", { "a" } },
        { "api_base_url", "a" }, { "auth_token", "a" }, { "block_reason", "a" }, { "lease_boot_session_uuid", "a" },
        { "lease_until_uptime_ns", 1 } };
    submit(statusWith(Json::object()));
    for (std::size_t writes = 1; const auto& field : fields.items()) {
        submit(statusWith({ { field.key(), field.value() } }));
        EXPECT_EQ(files.writes().size(), ++writes) << field.key();
    }
}

TEST_F(SharedBlockStateWriterTest, AFailureLeavesTheOldFileAndTheNextSubmissionTriesAgain)
{
    const auto status = statusWithReason("old");
    submit(status);
    files.failure = FileStoreError { "could not write: No space left on device" };
    submit(statusWithReason("new"));
    EXPECT_EQ(writtenReason(), "old");
    files.failure.reset();
    submit(status);
    EXPECT_EQ(files.writes().size(), 2U) << "what the file holds is not known after a failure";

    folder.reset();
    submit(statusWithReason("unheard"));
    EXPECT_EQ(files.writes().size(), 2U);
    folder = "/group";
    submit(statusWithReason("unheard"));
    EXPECT_EQ(writtenReason(), "unheard");
    folder = "/another";
    files.folderFailure = FileStoreError { "Permission denied" };
    submit(statusWithReason("unheard"));
    EXPECT_EQ(files.writes().size(), 3U);
    files.folderFailure.reset();
    submit(statusWithReason("unheard"));
    EXPECT_TRUE(files.contents("/another/block_state.json"));
    EXPECT_TRUE(files.folders().contains("/another")) << "the system makes none";
}

TEST_F(SharedBlockStateWriterTest, AWriterThatIsGoneLeavesItsQueuedWorkWithoutHarm)
{
    const auto status = statusWithReason("last");
    const std::weak_ptr<const BlockingStatus> watched = status;
    writer->submit(status);
    writer.reset();
    queue.runAll();
    EXPECT_LE(files.writes().size(), 1U);
    EXPECT_EQ(watched.use_count(), 1) << "only the test holds it";
}

}
