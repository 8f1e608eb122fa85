#include "daemon/RemovalSnapshot.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace brevanta {

namespace {

std::optional<RemovalSnapshot> decode(const Json& record)
{
    json::Parser parser;
    PaddedBuffer bytes;
    bytes.assign(record.dump());
    return RemovalSnapshot::decode(*json::parse(parser, bytes));
}

Json record(const Json& additions = Json::object())
{
    Json whole { { "state", "pending" }, { "launch", "A" }, { "launch_order", 5 }, { "seq", 3 } };
    whole.update(additions);
    return whole;
}

constexpr std::uint64_t twoToThe53 = 1ULL << 53U;

}

TEST(RemovalSnapshot, AWholeRecordKeepsEveryField)
{
    const auto snapshot = decode(
        record({ { "origin", "app_missing" }, { "expires_at", 1.5 }, { "action_id", 0 }, { "queue_error", "refreshed" },
            { "requesting", true }, { "account", "0123" }, { "finishing_by", 2 }, { "blocking_off", true } }));
    EXPECT_EQ(snapshot,
        (RemovalSnapshot {
            RemovalSnapshot::State::pending, "app_missing", 1.5, 0, "refreshed", true, "0123", "A", 5, 3, 2, true }));
}

TEST(RemovalSnapshot, ABrokenRequiredRuleMakesTheWholeRecordAbsent)
{
    for (const Json& bad : { Json({ { "state", "gone" } }), Json({ { "state", 1 } }), Json({ { "state", nullptr } }),
             Json({ { "launch", "" } }), Json({ { "launch", std::string(65, 'x') } }), Json({ { "launch", 1 } }),
             Json({ { "launch_order", 0 } }), Json({ { "launch_order", twoToThe53 } }), Json({ { "seq", 0 } }),
             Json({ { "seq", true } }), Json({ { "seq", 1.5 } }), Json({ { "seq", "1" } }), Json({ { "seq", -1 } }) })
        EXPECT_FALSE(decode(record(bad))) << bad;
    EXPECT_FALSE(decode(Json::array()));
}

TEST(RemovalSnapshot, LimitsOfTheRequiredRulesAreInclusive)
{
    std::string wideLaunch;
    for (int index = 0; index < 64; ++index)
        wideLaunch += "é";
    const auto snapshot
        = decode(record({ { "launch", wideLaunch }, { "launch_order", twoToThe53 - 1 }, { "seq", 1.0 } }));
    ASSERT_TRUE(snapshot);
    EXPECT_EQ(snapshot->launchOrder, twoToThe53 - 1);
    EXPECT_EQ(snapshot->seq, 1u);
}

TEST(RemovalSnapshot, ABrokenOptionalRuleDropsOnlyThatField)
{
    const auto plain = decode(record());
    for (const Json& bad : { Json({ { "origin", "elsewhere" } }), Json({ { "origin", 1 } }),
             Json({ { "expires_at", 0 } }), Json({ { "expires_at", -1 } }), Json({ { "expires_at", true } }),
             Json({ { "action_id", 1.5 } }), Json({ { "action_id", -1 } }), Json({ { "action_id", true } }),
             Json({ { "action_id", twoToThe53 } }), Json({ { "queue_error", 5 } }), Json({ { "requesting", 1 } }),
             Json({ { "account", "" } }), Json({ { "account", "12a" } }), Json({ { "account", std::string(33, '1') } }),
             Json({ { "account", 12 } }), Json({ { "finishing_by", 0 } }), Json({ { "blocking_off", 1 } }) })
        EXPECT_EQ(decode(record(bad)), plain) << bad;
    EXPECT_EQ(decode(record({ { "account", std::string(32, '1') } }))->account, std::string(32, '1'));
    EXPECT_EQ(decode(record({ { "queue_error", "no idea" } }))->queueError, "unavailable");
}

}
