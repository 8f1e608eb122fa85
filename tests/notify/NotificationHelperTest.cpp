#include "notify/NotificationHelper.h"

#include "fakes/FakeMainLoop.h"
#include "fakes/FakePorts.h"
#include "notify/NoticeClick.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

using Names = std::vector<std::string>;

class NotificationHelperTest : public testing::Test {
protected:
    void post(const std::string& identifier, PostLimits limits = {})
    {
        helper.post("title", "body", identifier, {}, std::move(limits));
    }

    [[nodiscard]] Names added() const
    {
        Names identifiers;
        for (const auto& notification : center.added)
            identifiers.push_back(notification.identifier);
        return identifiers;
    }

    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    FakeSystemLog log;
    FakeNotificationCenter center { mainLoop };
    SystemNotificationCenterClient client { center, mainLoop, [this] { return clock.continuousSeconds(); } };
    NotificationHelper helper { client, log };
};

const std::string droppedPrefix = "[NotificationHelper] dropped ";

}

TEST_F(NotificationHelperTest, TheIdentifierChoosesTheSound)
{
    for (const char* identifier : { "intraday-4", "no-lp", "task", "task-timer-1", "strange-1" })
        post(identifier);
    helper.post("t", "b", "x", { { "open", "/" } });
    mainLoop.runPosted();
    ASSERT_EQ(center.added.size(), 6U);
    EXPECT_EQ(center.added[0],
        (Notification { .identifier = "intraday-4",
            .title = "title",
            .body = "body",
            .sound = "brevanta-signature.aiff",
            .userInfo = {} }));
    EXPECT_EQ(center.added[1].sound, "brevanta-loss.aiff");
    EXPECT_EQ(center.added[2].sound, std::nullopt);
    EXPECT_EQ(center.added[3].sound, "brevanta-signature.aiff");
    EXPECT_EQ(center.added[4].sound, std::nullopt);
    EXPECT_EQ(center.added[5].userInfo, (NotificationUserInfo { { "open", "/" } }));
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(NotificationHelperTest, PostsWaitForTheAnswerAndFollowInOrder)
{
    center.holdsRequests = true;
    post("a");
    mainLoop.advance(SystemNotificationCenterClient::longestWait - 1);
    post("b");
    EXPECT_TRUE(added().empty());
    EXPECT_EQ(center.requests, 1) << "one request at a time";
    center.answerHeldRequests(NotificationAuthorization::provisional);
    mainLoop.runPosted();
    EXPECT_EQ(added(), (Names { "a", "b" }));
    post("c");
    EXPECT_EQ(added().size(), 3U) << "at once, now that it is allowed";
    mainLoop.advance(60);
    EXPECT_EQ(center.requests, 1);
    EXPECT_EQ(mainLoop.timerCount(), 0U);
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(NotificationHelperTest, WhatIsNotAllowedIsDroppedAndTheNextOneAsksAgain)
{
    center.answerOfUser = NotificationAuthorization::denied;
    center.reason = "no banners here";
    post("a");
    post("b");
    mainLoop.runPosted();
    post("c");
    mainLoop.runPosted();
    const std::string denied = "[NotificationHelper] notifications are not allowed";
    EXPECT_EQ(log.lines, Names { denied + ": no banners here" }) << "once";
    center.authorization = NotificationAuthorization::authorized; // In the system's settings.
    post("d");
    mainLoop.runPosted();
    EXPECT_EQ(added(), Names { "d" });
    EXPECT_EQ(center.requests, 3);
    center.failure = NotificationError { "no room" };
    center.authorization = NotificationAuthorization::denied;
    center.reason.clear();
    post("e");
    mainLoop.runPosted();
    post("f");
    mainLoop.runPosted();
    EXPECT_EQ(log.lines, (Names { denied + ": no banners here", "[NotificationHelper] add failed: no room", denied }));
}

TEST_F(NotificationHelperTest, NobodyWaitsForAnAnswerForever)
{
    center.holdsRequests = true;
    post("a");
    mainLoop.advance(4);
    post("b");
    mainLoop.advance(SystemNotificationCenterClient::longestWait - 4);
    const auto unanswered = ": no answer in time whether notifications are allowed";
    EXPECT_EQ(log.lines, Names { droppedPrefix + "a" + unanswered });
    EXPECT_EQ(center.requests, 2) << "the other one is not to wait for an answer that never comes";
    mainLoop.advance(3.9);
    EXPECT_EQ(log.lines.size(), 1U);
    mainLoop.advance(0.1);
    EXPECT_EQ(log.lines.back(), droppedPrefix + "b" + unanswered);
    mainLoop.advance(SystemNotificationCenterClient::longestWait);
    center.holdsRequests = false;
    post("c");
    mainLoop.runPosted();
    EXPECT_EQ(added(), Names { "c" });
    EXPECT_EQ(center.requests, 3);
    EXPECT_EQ(mainLoop.timerCount(), 0U);
}

TEST_F(NotificationHelperTest, AnAnswerAfterASleepFindsNothingToPost)
{
    center.holdsRequests = true;
    post("a");
    clock.setContinuousSeconds(clock.continuousSeconds() + 3600); // No timer has fired meanwhile.
    center.answerHeldRequests(NotificationAuthorization::authorized);
    mainLoop.runPosted();
    EXPECT_TRUE(added().empty());
    EXPECT_EQ(log.lines.size(), 1U);
}

TEST_F(NotificationHelperTest, ALateOrUnwantedPostIsDroppedAtTheMomentOfPosting)
{
    const auto now = clock.continuousSeconds();
    bool isWanted = true;
    center.holdsRequests = true;
    post("late", { .deadline = now + 5 });
    post("in-time", { .deadline = now + 6 });
    post("unwanted", { .stillWanted = [&] { return isWanted; } });
    mainLoop.advance(6);
    isWanted = false;
    center.answerHeldRequests(NotificationAuthorization::authorized);
    mainLoop.runPosted();
    EXPECT_EQ(added(), Names { "in-time" });
    EXPECT_EQ(log.lines,
        (Names { droppedPrefix + "late: its deadline has passed",
            droppedPrefix + "unwanted: somebody has signed in or out since" }));
    post("expired", { .deadline = clock.continuousSeconds() - 0.001 });
    EXPECT_EQ(log.lines.back(), droppedPrefix + "expired: its deadline has passed");
    post("just", { .deadline = clock.continuousSeconds() });
    EXPECT_EQ(added().back(), "just");
}

TEST_F(NotificationHelperTest, AllWhoAskShareOneRequestAndItsAnswer)
{
    center.holdsRequests = true;
    std::vector<NotificationAuthorization> answers;
    const auto record = [&](NotificationAuthorization answer) { answers.push_back(answer); };
    client.requestAuthorization(record);
    post("a");
    client.requestAuthorization(record);
    EXPECT_EQ(center.requests, 1);
    center.answerHeldRequests(NotificationAuthorization::authorized);
    mainLoop.runPosted();
    EXPECT_EQ(answers, std::vector(2, NotificationAuthorization::authorized));
    EXPECT_EQ(added(), Names { "a" });
    client.requestAuthorization(record);
    EXPECT_EQ(center.requests, 2) << "the user may have decided otherwise since";
    center.authorization = NotificationAuthorization::denied;
    client.getAuthorization(record);
    mainLoop.runPosted();
    EXPECT_EQ(answers.size(), 3U) << "the second question is still open";
    post("b");
    EXPECT_EQ(added(), Names { "a" });
    center.authorization = NotificationAuthorization::authorized;
    client.getAuthorization([](auto) { });
    mainLoop.runPosted();
    EXPECT_EQ(added(), (Names { "a", "b" })) << "allowed in the settings, whatever becomes of the question";
    EXPECT_EQ(answers.size(), 4U);
}

TEST_F(NotificationHelperTest, AClickIsToldAlsoWhenItCameBeforeThereWasAClient)
{
    std::vector<NotificationResponse> told;
    const NotificationResponse first { .identifier = "task-timer-1", .userInfo = { { "open", "/" } } };
    center.click(first);
    mainLoop.runPosted();
    client.setClient([&](const NotificationResponse& response) { told.push_back(response); });
    EXPECT_TRUE(told.empty());
    mainLoop.runPosted();
    EXPECT_EQ(told, std::vector { first });
    client.setClient({});
    center.click(first);
    mainLoop.runPosted();
    EXPECT_EQ(told.size(), 1U);
}

TEST(SystemNotificationCenterClientTest, AClientThatHasGoneIsToldNothing)
{
    FakeClock clock;
    FakeMainLoop mainLoop(clock);
    FakeNotificationCenter center(mainLoop);
    {
        SystemNotificationCenterClient client(center, mainLoop, [&] { return clock.continuousSeconds(); });
        const auto fail = [](const auto&) { FAIL() << "told after its end"; };
        client.setClient(fail);
        client.getAuthorization(fail);
        client.post({ .identifier = "a", .title = {}, .body = {} }, {}, fail);
    }
    center.click({ .identifier = "a", .userInfo = {} });
    mainLoop.advance(60);
    EXPECT_TRUE(center.added.empty());
}

TEST(NoticeClickTest, BringsTheWindowForwardUnlessATrustedUrlIsToBeOpened)
{
    static constexpr auto trusted = "https://www.example.com/tasks/2";
    const auto isTrusted = [](const std::string& url) { return url == trusted; };
    const NoticeClick window { .kind = NoticeClick::Kind::bringWindowForward };
    for (const char* open : { "/tasks/2", "http://evil.example/", "javascript:alert(1)", "" })
        EXPECT_EQ(noticeClick({ "task-timer-1", { { "open", open } } }, isTrusted), window) << open;
    EXPECT_EQ(noticeClick({ "low-lp", {} }, isTrusted), window);
    EXPECT_EQ(noticeClick({ "low-lp", { { "other", trusted } } }, isTrusted), window);
    EXPECT_EQ(noticeClick({ "task-timer-1", { { "open", trusted } } }, isTrusted),
        (NoticeClick { .kind = NoticeClick::Kind::openUrl, .url = trusted }));
    EXPECT_EQ(noticeClick({ "", { { "open", trusted } } }, isTrusted), NoticeClick {});
}

}
