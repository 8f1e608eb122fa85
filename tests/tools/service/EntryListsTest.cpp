#include "service/EntryLists.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

namespace brevanta::service {

TEST(EntryLists, EveryListHasAsManyDifferentEntriesAsAskedFor)
{
    for (const auto key : EntryLists::keys) {
        for (const std::size_t count : { 0u, 1u, 10u, 70'000u }) {
            SCOPED_TRACE(std::string(key) + ' ' + std::to_string(count));
            EntryLists lists;
            lists.setCount(key, count);
            const auto entries = nlohmann::json::parse(lists.textOf(key)).get<std::vector<std::string>>();
            EXPECT_EQ(entries.size(), count);
            EXPECT_EQ(std::set(entries.begin(), entries.end()).size(), count);
        }
    }
}

TEST(EntryLists, ALongerListBeginsWithTheShorterOne)
{
    EntryLists lists;
    const auto shortText = lists.textOf("blocked_domains");
    lists.setCount("blocked_domains", 11);
    EXPECT_TRUE(lists.textOf("blocked_domains").starts_with(shortText.substr(0, shortText.size() - 1) + ","));
}

}
