#include "service/FilterReportJudge.h"

#include <gtest/gtest.h>

namespace brevanta::service {

static std::string judged(FilterReportJudge& judge, const char* report)
{
    return judge.answer(nlohmann::json::parse(report)).value_or("(none)");
}

TEST(FilterReportJudge, AReportIsTakenOnlyWithExactlyItsFourKeysAndTheirTypes)
{
    struct Row {
        const char* report;
        const char* expected;
    };
    static constexpr Row rows[] = {
        { R"({"schema":1,"state":"on","observed_at_ns":5,"sent_at_ns":9})", "accepted" },
        { R"({"schema":1,"state":"cantCheck","observed_at_ns":0,"sent_at_ns":18446744073709551615})", "accepted" },
        { R"({"schema":2,"state":"on","observed_at_ns":5,"sent_at_ns":9})", "malformed" },
        { R"({"schema":1.0,"state":"on","observed_at_ns":5,"sent_at_ns":9})", "malformed" },
        { R"({"schema":true,"state":"on","observed_at_ns":5,"sent_at_ns":9})", "malformed" },
        { R"({"schema":1,"state":"On","observed_at_ns":5,"sent_at_ns":9})", "malformed" },
        { R"({"schema":1,"state":"on","observed_at_ns":-5,"sent_at_ns":9})", "malformed" },
        { R"({"schema":1,"state":"on","observed_at_ns":5,"sent_at_ns":9.5})", "malformed" },
        { R"({"schema":1,"state":"on","observed_at_ns":5})", "malformed" },
        { R"({"schema":1,"state":"on","observed_at_ns":5,"sent_at_ns":9,"more":1})", "malformed" },
        { R"([])", "malformed" },
        { R"("on")", "malformed" },
    };
    for (const auto& row : rows) {
        FilterReportJudge judge;
        EXPECT_EQ(judged(judge, row.report), row.expected) << row.report;
    }
}

TEST(FilterReportJudge, AReportThatIsNotNewerThanTheOneBeforeIsOutOfOrder)
{
    FilterReportJudge judge;
    EXPECT_EQ(judged(judge, R"({"schema":1,"state":"on","observed_at_ns":5,"sent_at_ns":9})"), "accepted");
    EXPECT_EQ(judged(judge, R"({"schema":1,"state":"off","observed_at_ns":6,"sent_at_ns":9})"), "out_of_order");
    EXPECT_EQ(judged(judge, R"({"schema":1,"state":"off","observed_at_ns":6,"sent_at_ns":10})"), "accepted");
}

}
