#include "gtk/standin/StandInStore.h"
#include "functional/support/TemporaryDirectory.h"
#include "posix/FileDescriptor.h"

#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>

namespace brevanta {

namespace {

class StandInStoreTest : public testing::Test {
protected:
    void SetUp() override { std::filesystem::create_directories(m_file.parent_path()); }

    functional::TemporaryDirectory m_root;
    StandInStore m_store { m_root.path() };
    std::filesystem::path m_file { m_store.filterFile() };
};

}

TEST_F(StandInStoreTest, OfTwoWhoChangeAFileAtOnceNeitherLosesAChange)
{
    constexpr int rounds = 50;
    const auto change = [this](auto step) {
        // As in another process: nothing is shared but the files.
        const StandInStore store(m_root.path());
        for (int round = 0; round < rounds; ++round)
            EXPECT_TRUE(store.changeFilter([&](const auto& current) {
                auto next = current;
                step(*next);
                return next;
            }));
    };
    std::thread other([&] { change([](FilterStandIn& standIn) { standIn.copies.emplace_back(); }); });
    change([](FilterStandIn& standIn) { ++standIn.behaviour.failureCode; });
    other.join();
    const auto result = m_store.filter();
    ASSERT_TRUE(result);
    EXPECT_EQ(result->copies.size(), rounds);
    EXPECT_EQ(result->behaviour.failureCode, FilterBehaviour().failureCode + rounds);
}

TEST_F(StandInStoreTest, AnErrorNamesTheFileAndLeavesItAsItIs)
{
    std::ofstream(m_file) << "{\"secret\": 1}";
    const auto unreadable = m_store.filter();
    ASSERT_FALSE(unreadable);
    EXPECT_TRUE(unreadable.error().message.starts_with(m_file.string())) << unreadable.error().message;
    EXPECT_FALSE(unreadable.error().message.contains("secret"));
    EXPECT_FALSE(m_store.changeFilter([](const auto& current) { return current; }));
    std::string kept;
    std::getline(std::ifstream(m_file), kept);
    EXPECT_EQ(kept, "{\"secret\": 1}");
    EXPECT_EQ(m_store.service(), ServiceStandIn()) << "the other file is not touched by it";

    EXPECT_TRUE(m_store.changeFilter([](const auto&) { return FilterStandIn(); }));
    EXPECT_EQ(m_store.filter(), FilterStandIn());
}

TEST_F(StandInStoreTest, WhatIsNoFileHoldsNobodyUp)
{
    ASSERT_EQ(::mkfifo(m_file.c_str(), 0600), 0);
    EXPECT_FALSE(m_store.filter());
    std::filesystem::remove(m_file);
    std::filesystem::create_directory(m_file);
    EXPECT_FALSE(m_store.filter());
    EXPECT_FALSE(m_store.changeFilter([](const auto&) { return FilterStandIn(); }));
    std::filesystem::remove(m_file);
    std::filesystem::create_symlink("/dev/zero", m_file);
    EXPECT_FALSE(m_store.filter());
}

TEST_F(StandInStoreTest, ALockThatIsNeverReleasedIsAnErrorInTheEnd)
{
    const FileDescriptor held(::open((m_file.string() + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    ASSERT_EQ(::flock(held.get(), LOCK_EX), 0);
    EXPECT_FALSE(m_store.changeFilter([](const auto&) { return FilterStandIn(); }));
    EXPECT_EQ(m_store.filter(), FilterStandIn()) << "reading needs no lock";
}

}
