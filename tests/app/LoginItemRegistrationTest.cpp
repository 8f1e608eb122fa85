#include "app/LoginItemRegistration.h"

#include "fakes/FakeLoginItem.h"
#include "fakes/FakeMainLoop.h"
#include "fakes/FakePorts.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

class LoginItemRegistrationTest : public testing::Test {
protected:
    void begin()
    {
        registration->begin();
        mainLoop.runPosted();
    }

    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    FakeSystemLog log;
    FakeLoginItem item { mainLoop };
    std::optional<LoginItemRegistration> registration { std::in_place, item, mainLoop, log };
};

const std::expected<void, LoginItemError> refusal { std::unexpect, "Operation not permitted" };

}

TEST_F(LoginItemRegistrationTest, OnlyWhatIsNotRegisteredIsRegistered)
{
    const struct {
        LoginItemStatus status;
        int registrations;
        std::vector<std::string> lines;
    } cases[] = {
        { LoginItemStatus::notRegistered, 1, { "[LoginItem] registered after the 1st attempt" } },
        { LoginItemStatus::notFound, 1, { "[LoginItem] registered after the 1st attempt" } },
        { LoginItemStatus::enabled, 0, {} },
        { LoginItemStatus::requiresApproval, 0, { "[LoginItem] switched off by the user: not registered again" } },
    };
    for (const auto& [status, registrations, lines] : cases) {
        item.statuses.result = status;
        item.registrations.asked = 0;
        log.lines.clear();
        registration.emplace(item, mainLoop, log);
        begin();
        mainLoop.advance(100);
        EXPECT_EQ(item.registrations.asked, registrations);
        EXPECT_EQ(log.lines, lines);
    }
}

TEST_F(LoginItemRegistrationTest, WhatFailsIsTriedAgainLaterAndLaterAndThenNoMore)
{
    item.registrations.result = refusal;
    begin();
    int attempts = 1;
    for (const double delay : { 2, 4, 8, 16 }) {
        mainLoop.advance(delay - 0.5);
        EXPECT_EQ(item.registrations.asked, attempts);
        EXPECT_TRUE(log.lines.empty());
        mainLoop.advance(0.5);
        EXPECT_EQ(item.registrations.asked, ++attempts);
    }
    mainLoop.advance(1000);
    EXPECT_EQ(item.registrations.asked, 5);
    EXPECT_EQ(log.lines,
        std::vector<std::string> { "[LoginItem] register failed after the 5th attempt: Operation not permitted" });
}

TEST_F(LoginItemRegistrationTest, ASuccessEndsTheAttempts)
{
    item.registrations.result = refusal;
    begin();
    mainLoop.advance(2);
    item.registrations.result = {};
    mainLoop.advance(1000);
    EXPECT_EQ(item.registrations.asked, 3);
    EXPECT_EQ(log.lines, std::vector<std::string> { "[LoginItem] registered after the 3rd attempt" });
}

TEST_F(LoginItemRegistrationTest, AnAnswerAfterTheEndOfTheRegistrationDoesNothing)
{
    item.registrations.isHeld = true;
    begin();
    registration.reset();
    item.registrations.answerOldest(refusal);
    mainLoop.advance(1000);
    EXPECT_EQ(item.registrations.asked, 1);
    EXPECT_TRUE(log.lines.empty());
}

}
