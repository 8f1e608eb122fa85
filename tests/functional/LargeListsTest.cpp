#include "WebTest.h"

#include <chrono>
#include <fstream>
#include <nlohmann/json.hpp>

namespace brevanta::functional {

namespace {

constexpr std::size_t domains = 200'000;

// Much more than one answer takes, and much less than what a main thread that grows with the lists would need.
constexpr Milliseconds longestAnswer { 400 };

class LargeListsTest : public WebTest {
protected:
    // How long the client took to tell its menu.
    [[nodiscard]] Milliseconds timeOfAnswer()
    {
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_TRUE(bench().menu().read());
        return std::chrono::duration_cast<Milliseconds>(std::chrono::steady_clock::now() - begin);
    }
};

}

TEST_F(LargeListsTest, theClientAnswersWhileTwoHundredThousandDomainsChangeWithEachPoll)
{
    ASSERT_TRUE(showsPage());
    tell("list blocked_domains " + std::to_string(domains));
    tell("drain 0.01"); // So that no reply is like the one before.
    ASSERT_TRUE(web().awaitTrue(
        "window.demo.events.some((e) => e.detail && e.detail.blockedDomains && e.detail.blockedDomains.length === "
        + std::to_string(domains) + ")"));

    Milliseconds longest { 0 };
    const auto enough = service().requestCount("get_status").value_or(0) + 4;
    while (service().requestCount("get_status").value_or(enough) < enough)
        longest = std::max(longest, timeOfAnswer());
    RecordProperty("longestAnswerInMilliseconds", static_cast<int>(longest.count()));
    EXPECT_LT(longest.count(), longestAnswer.count());

    std::ifstream file(bench().client().sharedStateFile());
    const auto state = nlohmann::json::parse(file, nullptr, false);
    ASSERT_TRUE(state.is_object());
    EXPECT_EQ(state["blockedDomains"].size(), domains);
}

}
