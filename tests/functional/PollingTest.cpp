#include "ClientTest.h"

namespace brevanta::functional {

using Clock = std::chrono::steady_clock;

class PollingTest : public ClientTest {
protected:
    // Without a page, which would ask for the status too.
    PollingTest()
        : ClientTest({ .preparations = { "energy 42" }, .webPreparations = { "refuse" } })
    {
    }
};

TEST_F(PollingTest, theServiceIsAskedEveryTwoSeconds)
{
    static constexpr int intervalCount = 4;
    static constexpr double tolerance = 0.25;
    ASSERT_TRUE(showsDescription(notBlocking));
    ASSERT_TRUE(service().awaitPolls(1));
    auto last = Clock::now();
    for (int interval = 0; interval < intervalCount; ++interval) {
        ASSERT_TRUE(service().awaitPolls(1));
        const auto now = Clock::now();
        EXPECT_NEAR(std::chrono::duration<double>(now - last).count(), 2.0, tolerance);
        last = now;
    }
}

class TokenTest : public ClientTest {
protected:
    static constexpr auto secret = "eyJ-a-token-that-nobody-may-read-7f3c";

    TokenTest()
        : ClientTest({ .preparations = { std::string("set auth_token \"") + secret + '"', "energy 42" } })
    {
    }
};

TEST_F(TokenTest, aTokenIsNeverWrittenToTheLog)
{
    ASSERT_TRUE(showsDescription(notBlocking));
    // Replies that cannot be used are the ones that a careless log would quote.
    tell("misbehave half");
    ASSERT_TRUE(showsDescription(statusUnknown));
    tell("behave");
    tell("set energy \"twelve\"");
    ASSERT_TRUE(service().awaitHandledPolls(1));
    tell("unset energy");
    tell("token reject");
    tell("token expire");
    ASSERT_TRUE(showsDescription(notBlocking));
    click("Quit");
    expectCleanExit(patience);
    EXPECT_FALSE(bench().client().log().empty()) << "a log that is never written proves nothing";
    EXPECT_EQ(bench().client().log().find(secret), std::string::npos);
    EXPECT_EQ(bench().client().process().output().text().find(secret), std::string::npos);
}

}
