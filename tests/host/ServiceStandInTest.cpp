#include "gtk/standin/ServiceStandIn.h"

#include <gtest/gtest.h>

namespace brevanta {

TEST(ServiceStandIn, EveryStateComesBackFromItsText)
{
    for (const auto& standIn :
        { ServiceStandIn {}, ServiceStandIn { .isLoaded = true, .backgroundItem = BackgroundItem::allowed },
            ServiceStandIn { .isLoaded = true,
                .backgroundItem = BackgroundItem::requiresApproval,
                .refusals = 20,
                .process = ServiceProcess { .processId = 4711, .startTicks = std::int64_t { 1 } << 40 } } })
        EXPECT_EQ(decodeServiceStandIn(encode(standIn)), standIn) << encode(standIn);
}

TEST(ServiceStandIn, WhatCannotBeIsAnError)
{
    for (const auto* const text : { R"({"refusals": -1})", R"({"refusals": 1.5})", R"({"refusals": true})",
             R"({"refusals": 2147483648})", R"({"pid": 7})", R"({"startTicks": 7})", R"({"pid": 0, "startTicks": 7})",
             R"({"pid": "7", "startTicks": 7})", R"({"pid": 7, "startTicks": 9223372036854775808})" })
        EXPECT_FALSE(decodeServiceStandIn(text)) << text;
}

}
