#include "service/RequestLog.h"

#include <gtest/gtest.h>

namespace brevanta::service {

TEST(RequestLog, TokensAreShownInFullOnlyWhenAskedFor)
{
    const std::string request = R"({"type":"set_auth_token","token":"secret-value"})";
    EXPECT_EQ(describeRequest(request, LogDetail::redacted), R"(request {"token":"12 bytes","type":"set_auth_token"})");
    EXPECT_EQ(describeRequest(request, LogDetail::full), R"(request {"token":"secret-value","type":"set_auth_token"})");
}

TEST(RequestLog, NoTokenEscapesByBeingOddlyPacked)
{
    static constexpr const char* requests[] = {
        R"({"type":"set_auth_token","token":"secret-value")",
        R"({"token":{"inner":"secret-value"}})",
        R"({"tok\u0065n":"secret-value"})",
        R"({"token":["secret-value"]})",
    };
    for (const auto request : requests)
        EXPECT_EQ(describeRequest(request, LogDetail::redacted).find("secret-value"), std::string::npos) << request;
}

TEST(RequestLog, EveryRequestIsOneLine)
{
    EXPECT_EQ(describeRequest("{\"type\":\"a\\nb\"}", LogDetail::full), R"(request {"type":"a\nb"})");
    EXPECT_EQ(describeRequest("bad\r\v", LogDetail::full), "request (5 bytes that are no JSON)");
}

}
