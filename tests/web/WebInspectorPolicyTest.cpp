#include "web/WebInspectorPolicy.h"

#include <gtest/gtest.h>
#include <limits>

namespace brevanta {

TEST(WebInspectorPolicy, OnlyADateOfTheNextSevenDaysSwitchesItOn)
{
    using Kind = WebInspectorPolicy::Stored::Kind;
    constexpr double now = 1'700'000'000;
    constexpr double day = 86'400;
    const WebInspectorPolicy::Decision off {};
    const WebInspectorPolicy::Decision invalid { std::nullopt, true };
    EXPECT_EQ(WebInspectorPolicy::decide({ Kind::nothing }, now), off);
    EXPECT_EQ(WebInspectorPolicy::decide({ Kind::somethingElse, now + 60 }, now), invalid);
    for (const double left : { 0.001, 3600.0, 7 * day })
        EXPECT_EQ(WebInspectorPolicy::decide({ Kind::date, now + left }, now),
            (WebInspectorPolicy::Decision { now + left, false }));
    for (const double left : { 0.0, -60.0, 7 * day + 1, 8 * day, std::numeric_limits<double>::infinity(),
             std::numeric_limits<double>::quiet_NaN() })
        EXPECT_EQ(WebInspectorPolicy::decide({ Kind::date, now + left }, now), invalid) << left;
}

}
