#include "app/FirstLoadHold.h"

#include "fakes/FakeMainLoop.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

using Kind = LaunchActivationOutcome::Kind;

class FirstLoadHoldTest : public testing::Test {
protected:
    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    std::vector<std::string> releases;
    FirstLoadHold hold { mainLoop, [this](const std::string& reason) { releases.push_back(reason); } };
};

}

TEST_F(FirstLoadHoldTest, AnActivationThatNeverSettlesIsWaitedForFiveSeconds)
{
    hold.arm();
    mainLoop.advance(4.99);
    EXPECT_TRUE(releases.empty());
    mainLoop.advance(0.01);
    EXPECT_EQ(releases, std::vector<std::string> { "released (deadline)" });
    hold.activationSettled({ .kind = Kind::completed, .replaced = true });
    mainLoop.advance(100);
    EXPECT_EQ(releases.size(), 1U);
}

TEST_F(FirstLoadHoldTest, AReplacedFilterGetsItsGraceAndTheDeadlineStillHolds)
{
    hold.arm();
    mainLoop.advance(1);
    hold.activationSettled({ .kind = Kind::completed, .replaced = true });
    mainLoop.advance(1.99);
    EXPECT_TRUE(releases.empty());
    mainLoop.advance(0.01);
    EXPECT_EQ(releases, std::vector<std::string> { "released (filter activation settled + 2.0s replace grace)" });
    mainLoop.advance(100);
    EXPECT_EQ(releases.size(), 1U);

    std::vector<std::string> late;
    FirstLoadHold other(mainLoop, [&](const std::string& reason) { late.push_back(reason); });
    other.arm();
    mainLoop.advance(4);
    other.activationSettled({ .kind = Kind::completed, .replaced = true });
    mainLoop.advance(1);
    EXPECT_EQ(late, std::vector<std::string> { "released (deadline)" });
    mainLoop.advance(100);
    EXPECT_EQ(late.size(), 1U);
    EXPECT_EQ(mainLoop.timerCount(), 0U);
}

}
