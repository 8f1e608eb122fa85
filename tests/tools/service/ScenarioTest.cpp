#include "service/Scenario.h"
#include "ServiceTesting.h"

#include <fstream>
#include <vector>

namespace brevanta::service {

TEST(Scenario, StepsComeInTheOrderOfTheirTimesAndThenOfTheirLines)
{
    auto scenario = Scenario::parse("day", "at 9 energy 1\n# nothing\n\nenergy 2\r\n  at 2.5 energy 3\nat 9 energy 4");
    ASSERT_TRUE(scenario);
    EXPECT_EQ(scenario->nextAt(), 0.0);
    std::vector<std::string> origins;
    while (const auto step = scenario->takeDue(9))
        origins.push_back(step->origin);
    EXPECT_EQ(origins, (std::vector<std::string> { "day:4", "day:5", "day:1", "day:6" }));
    EXPECT_EQ(scenario->nextAt(), std::nullopt);
}

TEST(Scenario, AStepIsNotTakenBeforeItsTime)
{
    auto scenario = Scenario::parse("day", "at 5 energy 1");
    ASSERT_TRUE(scenario);
    EXPECT_EQ(scenario->takeDue(4.999), nullptr);
    EXPECT_NE(scenario->takeDue(5), nullptr);
}

TEST(Scenario, ABadLineIsNamedByFileAndNumber)
{
    struct Row {
        const char* text;
        const char* expected;
    };
    static constexpr Row rows[] = {
        { "# a\nenergy 1\nfly\n", "day:3: unknown command 'fly' (see help)" },
        { "at soon energy 1", "day:1: usage: at SECONDS COMMAND" },
        { "at -1 energy 1", "day:1: usage: at SECONDS COMMAND" },
        { "at 3", "day:1: no command" },
        { "\nat 3 energy", "day:2: usage: energy COINS" },
        { "await get_status 1", "day:1: a scenario cannot await anything" },
    };
    for (const auto& row : rows) {
        const auto scenario = Scenario::parse("day", row.text);
        ASSERT_FALSE(scenario) << row.text;
        EXPECT_EQ(scenario.error().message, row.expected);
    }
}

TEST(Scenario, TheOnesThatComeWithTheServiceRunToTheirEnd)
{
    for (const std::string name : { "everyday", "hostile", "removal" }) {
        SCOPED_TRACE(name);
        auto scenario = Scenario::load(SERVICE_SCENARIO_DIRECTORY "/" + name + ".scenario");
        ASSERT_TRUE(scenario) << scenario.error().message;
        Service service(testIdentity());
        while (const auto step = scenario->takeDue(1e6)) {
            service.advance(step->at);
            EXPECT_TRUE(step->command(service)) << step->origin;
        }
    }
}

TEST(Scenario, TheEverydayOnePassesLowEmptyAndRestored)
{
    auto scenario = Scenario::load(SERVICE_SCENARIO_DIRECTORY "/everyday.scenario");
    ASSERT_TRUE(scenario);
    Service service(testIdentity());
    bool wasLow = false;
    bool wasOut = false;
    bool wasRestored = false;
    for (int second = 0; second < 120; ++second) {
        while (const auto step = scenario->takeDue(second)) {
            service.advance(step->at);
            ASSERT_TRUE(step->command(service));
        }
        service.advance(second);
        const double energy = statusOf(service)["energy"];
        wasLow |= energy > 0 && energy <= 10;
        wasOut |= wasLow && statusOf(service)["block_reason"] == "coins_depleted";
        wasRestored |= wasOut && energy >= 40 && statusOf(service)["should_block"] == false;
    }
    EXPECT_TRUE(wasRestored);
}

TEST(Scenario, AnEmptyFileIsOneAndAMissingFileIsAnError)
{
    const TemporaryDirectory directory;
    std::ofstream(directory.file("empty")).close();
    EXPECT_TRUE(Scenario::load(directory.file("empty")));
    EXPECT_FALSE(Scenario::load(directory.file("missing")));
}

}
