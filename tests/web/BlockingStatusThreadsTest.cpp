#include "base/SerialQueue.h"
#include "fakes/FakeMainLoop.h"
#include "fakes/FakePorts.h"
#include "fakes/FakeWebView.h"
#include "support/StatusReply.h"
#include "web/BlockingStatusDelivery.h"
#include "web/PageDelivery.h"
#include "web/TrustedOrigins.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace brevanta {

TEST(BlockingStatusThreads, ThePageEndsWithTheNewestStatusAndNoneComesAfterANewerOne)
{
    constexpr int statuses = 500;
    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    FakeSystemLog log;
    FakeWebView webView;
    webView.committed = Url { .text = {}, .scheme = "https", .host = "www.example.com" };
    const TrustedOrigins origins({ "www.example.com" }, {});
    PageDelivery page(webView, origins, log);
    SerialQueue queue;
    {
        BlockingStatusDelivery delivery(queue, mainLoop, page);
        for (int energy = 1; energy <= statuses; ++energy) {
            delivery.push(statusWith({ { "energy", energy } }));
            mainLoop.runPosted();
        }
        const auto isNewest
            = [&](const std::string& script) { return script.contains("energy: " + std::to_string(statuses) + ","); };
        while (webView.scripts.empty() || !isNewest(webView.scripts.back()))
            mainLoop.awaitPosted();
        delivery.push(statusWith({ { "energy", 0 } }));
    }
    std::vector<int> told;
    for (const auto& script : webView.scripts)
        told.push_back(std::stoi(script.substr(script.find("energy: ") + 8)));
    EXPECT_TRUE(std::ranges::is_sorted(told));
    EXPECT_EQ(std::ranges::adjacent_find(told), told.end()) << "none is told twice";
}

}
