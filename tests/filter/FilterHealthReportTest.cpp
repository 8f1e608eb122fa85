#include "filter/FilterHealthReport.h"

#include <gtest/gtest.h>
#include <limits>
#include <nlohmann/json.hpp>

namespace brevanta {

namespace {

constexpr double now = 1000;
constexpr std::uint64_t raw = 5'000'000'000;

FilterHealth seen(std::vector<ExtensionRecord> records, double recordsAge, double configAge, bool enabled = true)
{
    return {
        .properties = FilterHealth::Records { std::move(records), now - recordsAge },
        .propertiesFailedAt = {},
        .config = FilterHealth::Enabled { enabled, now - configAge },
    };
}

}

TEST(FilterHealthReport, ReportsTheStatusAndWhenItWasSeen)
{
    const std::vector<ExtensionRecord> active { { .isEnabled = true, .shortVersion = {}, .buildVersion = {} } };
    struct Case {
        const char* name;
        FilterHealth health;
        std::string state;
        std::uint64_t observedAt;
    };
    for (const auto& [name, health, state, observedAt] : std::initializer_list<Case> {
             { "on", seen(active, 1.5, 0.25), "on", raw - 1'500'000'000 },
             { "off", seen(active, 0, 0.25, false), "off", raw - 250'000'000 },
             { "absent", seen({}, 2, 0), "off", raw - 2'000'000'000 },
             { "own request", { .requestAwaitingApproval = true }, "awaitingApproval", raw },
             { "at the clock's start", seen({}, 5, 0), "off", 0 },
             { "before the clock's start", seen({}, 200, 0), "off", 0 },
             { "just seen", seen({}, 0, 0), "off", raw },
             { "config 11 s old", seen(active, 0, 11), "cantCheck", raw },
             { "nothing known", {}, "cantCheck", raw },
             { "failed", { .properties = FilterHealth::PropertiesFailed { now - 1 } }, "cantCheck", raw },
         }) {
        const Json expected
            = { { "schema", 1 }, { "state", state }, { "observed_at_ns", observedAt }, { "sent_at_ns", raw } };
        const auto report = FilterHealthReportSequence {}.next(health, now, raw);
        EXPECT_EQ(report, expected) << name;
        EXPECT_TRUE(report["observed_at_ns"].is_number_unsigned() && report["sent_at_ns"].is_number_unsigned());
    }
    for (const auto& [status, name] :
        { std::pair { FilterStatus::checking, "checking" }, std::pair { FilterStatus::cantCheck, "cantCheck" },
            std::pair { FilterStatus::awaitingApproval, "awaitingApproval" }, std::pair { FilterStatus::off, "off" },
            std::pair { FilterStatus::on, "on" } })
        EXPECT_EQ(reportName(status), name);
}

TEST(FilterHealthReport, NoTwoReportsAreSentAtTheSameNanosecond)
{
    FilterHealthReportSequence sequence;
    constexpr auto late
        = std::numeric_limits<std::uint64_t>::max() - 1; // More than a double, or a signed number, holds.
    std::vector<std::uint64_t> sent;
    for (const std::uint64_t at : { std::uint64_t { 0 }, raw, raw, raw - 100, raw + 1, raw + 10, late, late })
        sent.push_back(sequence.next({}, now, at)["sent_at_ns"].get<std::uint64_t>());
    EXPECT_EQ(sent, (std::vector<std::uint64_t> { 1, raw, raw + 1, raw + 2, raw + 3, raw + 10, late, late + 1 }));
    EXPECT_EQ(sequence.next({}, now, late)["observed_at_ns"], late);
}

TEST(FilterHealthReport, AnAnswerIsLoggedOnceUntilAReportIsAccepted)
{
    FilterHealthReportSequence sequence;
    const auto line
        = [](const std::string& result) { return "[DeviceSetup] daemon answered the filter report: " + result; };
    struct Step {
        std::optional<std::string> answer;
        std::optional<std::string> logged;
    };
    for (const auto& [answer, logged] : std::initializer_list<Step> {
             { std::nullopt, std::nullopt },
             { "accepted", std::nullopt },
             { "stale", line("stale") },
             { "stale", std::nullopt },
             { std::nullopt, std::nullopt },
             { "stale", std::nullopt },
             { "", line("") },
             { "stale", line("stale") },
             { "accepted", std::nullopt },
             { "stale", line("stale") },
         })
        EXPECT_EQ(sequence.answered(answer), logged) << answer.value_or("no answer");
}

}
