#include "service/Misbehaviour.h"
#include "ServiceTesting.h"
#include "service/CommandWords.h"

namespace brevanta::service {

static const std::string status = R"({"type":"get_status"})";

TEST(Misbehaviour, WordsThatDoNotFitAreRefused)
{
    static constexpr const char* lines[]
        = { "", "sulk", "delay", "delay x", "delay -1", "delay 1 2", "silence 3", "segments 0", "segments 5 x",
              "exact 0", "exact 99999999999999999999", "close on nothing", "close-early on get_status", "half times 0",
              "half times x", "refuse times 3", "refuse on get_status", "times 3", "on get_status" };
    for (const auto line : lines)
        EXPECT_FALSE(Misbehaviour::parse(CommandWords(line).remaining())) << line;
}

TEST(Misbehaviour, AReplyOfAnExactSizeIsStillValid)
{
    // The least sizes leave no room for the lists, so the reply shrinks to what a client needs.
    for (const std::size_t size : { 100u, 4096u, 4097u, 100'000u }) {
        Service service(testIdentity());
        runCommand(service, "misbehave exact " + std::to_string(size));
        const auto text = replyText(service, status);
        EXPECT_EQ(text.size(), size);
        EXPECT_EQ(text.back(), '\n');
        EXPECT_EQ(nlohmann::json::parse(text)["energy"], 50.0);
    }
}

TEST(Misbehaviour, WrongTypesChangeTheTypeOfEveryValueAndKeepTheKeys)
{
    Service service(testIdentity());
    const auto good = statusOf(service);
    runCommand(service, "misbehave wrong-types");
    const auto wrong = statusOf(service);
    ASSERT_EQ(wrong.size(), good.size());
    for (const auto& [key, value] : good.items())
        EXPECT_NE(std::string(wrong.at(key).type_name()), value.type_name()) << key;
}

TEST(Misbehaviour, SpoiltRepliesAreSpoiltInTheWayThatTheirNameSays)
{
    Service service(testIdentity());
    const auto good = replyText(service, status);
    const auto planned = [&](const std::string& mode) {
        EXPECT_EQ(runCommand(service, "misbehave " + mode), "ok");
        return service.answer(status);
    };
    EXPECT_EQ(planned("half").bytes, good.substr(0, (good.size() - 1) / 2));
    EXPECT_EQ(planned("half").ending, ReplyPlan::Ending::close);
    EXPECT_EQ(planned("half-hang").ending, ReplyPlan::Ending::hang);
    EXPECT_EQ(planned("silence").bytes, "");
    EXPECT_EQ(planned("silence").ending, ReplyPlan::Ending::hang);
    EXPECT_EQ(planned("close").bytes, "");
    EXPECT_EQ(planned("close").ending, ReplyPlan::Ending::close);
    EXPECT_EQ(planned("no-newline").bytes + "\n", good);
    EXPECT_EQ(planned("delay 1500").delaySeconds, 1.5);
    EXPECT_EQ(planned("delay 1500").bytes, good);
    EXPECT_EQ(planned("segments 7 20").segmentBytes, 7u);
    EXPECT_EQ(planned("segments 7 20").pauseSeconds, 0.02);
    EXPECT_EQ(planned("ok-and-error").bytes, "{\"ok\":true,\"error\":\"x\"}\n");
    EXPECT_TRUE(nlohmann::json::parse(planned("array").bytes).is_array());
    EXPECT_FALSE(nlohmann::json::accept(planned("garbage").bytes));
    EXPECT_EQ(planned("nested 3").bytes, "{\"ok\":[[[]]]}\n");
}

TEST(Misbehaviour, ItEndsAfterItsTimesAndSparesOtherRequestTypes)
{
    Service service(testIdentity());
    runCommand(service, "misbehave close on force_sync times 2");
    const auto sync = [&] { return replyText(service, R"({"type":"force_sync"})"); };
    EXPECT_EQ(sync(), "");
    EXPECT_NE(replyText(service, status), "");
    EXPECT_EQ(sync(), "");
    EXPECT_EQ(sync(), "{\"ok\":true}\n");
}

}
