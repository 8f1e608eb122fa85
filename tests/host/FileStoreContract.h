#pragma once

#include "platform/FileStore.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>
#include <thread>
#include <vector>

namespace brevanta {

// What holds for every FileStore. A bench gives:
//   FileStore& store();
//   std::filesystem::path path();             of a file that is not there yet
//   std::filesystem::path impossiblePath();   of a file that cannot be made
//   std::optional<std::string> contents();    of the file; nothing when it is not there
//   std::optional<FilePermissions> permissions();   its own; nothing when they are none of these
//   void replaceFromOutside(text);
//   void removeFromOutside();
template <typename Bench> class FileStoreContract : public testing::Test {
protected:
    Bench m_bench;
};

TYPED_TEST_SUITE_P(FileStoreContract);

TYPED_TEST_P(FileStoreContract, MakesAndReplacesFilesWithThePermissionsAskedForWhateverTheOldOnes)
{
    using enum FilePermissions;
    std::string contents(1, '\0');
    for (const auto permissions : { readableByAll, ownerOnly, executableByAll, ownerOnly }) {
        contents += "more \xFF\n";
        const auto stamp = this->m_bench.store().replace(this->m_bench.path(), contents, permissions);
        ASSERT_TRUE(stamp);
        EXPECT_EQ(stamp->size, contents.size());
        EXPECT_EQ(this->m_bench.contents(), contents);
        EXPECT_EQ(this->m_bench.permissions(), permissions);
        EXPECT_EQ(this->m_bench.store().permissions(this->m_bench.path()), permissions);
    }
    ASSERT_TRUE(this->m_bench.store().replace(this->m_bench.path(), "", ownerOnly));
    EXPECT_EQ(this->m_bench.contents(), "");
}

TYPED_TEST_P(FileStoreContract, TheStampStaysUntilSomebodyChangesTheFile)
{
    auto& store = this->m_bench.store();
    const auto path = this->m_bench.path();
    EXPECT_EQ(store.stamp(path), std::nullopt);
    const auto first = store.replace(path, "same", FilePermissions::ownerOnly);
    ASSERT_TRUE(first);
    EXPECT_EQ(store.stamp(path), *first);
    EXPECT_EQ(store.stamp(path), *first) << "looking changes nothing";
    const auto second = store.replace(path, "same", FilePermissions::ownerOnly);
    ASSERT_TRUE(second);
    EXPECT_NE(*first, *second);
    EXPECT_EQ(store.stamp(path), *second);
    this->m_bench.replaceFromOutside("same");
    EXPECT_NE(store.stamp(path), *second);
    this->m_bench.removeFromOutside();
    EXPECT_EQ(store.stamp(path), std::nullopt);
    EXPECT_EQ(store.permissions(path), std::nullopt);
}

TYPED_TEST_P(FileStoreContract, WhatCannotBeMadeIsAnErrorThatNamesNeitherFileNorContents)
{
    const auto path = this->m_bench.impossiblePath();
    const auto result = this->m_bench.store().replace(path, "secret", FilePermissions::ownerOnly);
    ASSERT_FALSE(result);
    EXPECT_FALSE(result.error().message.empty());
    EXPECT_FALSE(result.error().message.contains("secret"));
    EXPECT_FALSE(result.error().message.contains(path.filename().string()));
    EXPECT_EQ(this->m_bench.store().stamp(path), std::nullopt);
}

TYPED_TEST_P(FileStoreContract, WritersInSeveralThreadsNeverMixAndReadersSeeWholeFiles)
{
    constexpr int rounds = 50;
    auto& store = this->m_bench.store();
    const auto path = this->m_bench.path();
    const auto isWhole = [](const std::string& contents) {
        return !contents.empty()
            && contents == std::string(1000U * static_cast<unsigned char>(contents[0]), contents[0]);
    };
    ASSERT_TRUE(store.replace(path, std::string(1000U * 'a', 'a'), FilePermissions::ownerOnly));
    std::vector<std::thread> writers;
    for (const char letter : { 'a', 'b', 'c' })
        writers.emplace_back([&store, path, letter] {
            for (int round = 0; round < rounds; ++round)
                EXPECT_TRUE(store.replace(
                    path, std::string(1000U * static_cast<unsigned char>(letter), letter), FilePermissions::ownerOnly));
        });
    for (int round = 0; round < rounds; ++round) {
        const auto contents = this->m_bench.contents();
        EXPECT_TRUE(contents && isWhole(*contents));
    }
    for (auto& writer : writers)
        writer.join();
    const auto contents = this->m_bench.contents();
    EXPECT_TRUE(contents && isWhole(*contents));
}

REGISTER_TYPED_TEST_SUITE_P(FileStoreContract, MakesAndReplacesFilesWithThePermissionsAskedForWhateverTheOldOnes,
    TheStampStaysUntilSomebodyChangesTheFile, WhatCannotBeMadeIsAnErrorThatNamesNeitherFileNorContents,
    WritersInSeveralThreadsNeverMixAndReadersSeeWholeFiles);

}
