#include "gtk/NotificationCenterGtk.h"
#include "host/ScriptedNotificationService.h"

#include <gtest/gtest.h>
#include <optional>

namespace brevanta {

namespace {

using Answer = ScriptedNotificationService::Answer;
using Ends = std::vector<std::expected<void, NotificationError>>;

class NotificationCenterGtkTest : public testing::Test {
protected:
    NotificationCenterGtkTest() { startService(); }

    void startService(std::vector<const char*> capabilities = { "body" })
    {
        m_service.reset();
        m_service.emplace(m_bus, std::move(capabilities));
        hearTheBus();
    }

    // What the bus has announced so far has reached the centre.
    void hearTheBus() const
    {
        const GLibPtr<GVariant> reply(g_dbus_connection_call_sync(m_connection.get(), "org.freedesktop.DBus", "/",
            "org.freedesktop.DBus.Peer", "Ping", nullptr, nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
        EXPECT_TRUE(reply);
        while (g_main_context_iteration(nullptr, FALSE)) { }
    }

    void add(const std::string& identifier, const std::string& body = "body")
    {
        m_center.add({ identifier, "title", body }, [this](auto end) { m_ends.push_back(std::move(end)); });
    }

    [[nodiscard]] bool serveUntilEnds(std::size_t count)
    {
        return serveUntil([this, count] { return m_ends.size() >= count; });
    }

    // Everything that the centre has said to the bus has reached the service, and the answers have come back.
    void settle()
    {
        const auto probe = "settle-" + std::to_string(++m_probes);
        const auto ends = m_ends.size();
        const auto answer = std::exchange(m_service->answer, Answer::number);
        add(probe);
        ASSERT_TRUE(serveUntilEnds(ends + 1));
        m_service->answer = answer;
        m_ends.resize(ends);
        std::erase_if(m_service->notifyCalls, [&](const auto& call) { return call.identifierHint == probe; });
    }

    [[nodiscard]] std::vector<std::uint32_t> replacements() const
    {
        std::vector<std::uint32_t> numbers;
        for (const auto& call : m_service->notifyCalls)
            numbers.push_back(call.replaces);
        return numbers;
    }

    TestBus m_bus;
    GObjectPtr<GDBusConnection> m_connection { m_bus.connect() };
    std::optional<ScriptedNotificationService> m_service;
    NotificationCenterGtk m_center { m_connection.get(), { "Brevanta", "", "com.brevanta.Test" } };
    Ends m_ends;
    int m_probes { 0 };
};

}

TEST_F(NotificationCenterGtkTest, TellsTheServiceEverythingAndEndsOnceAfterTheCall)
{
    add("low-lp", "Coins dropped to 8");
    EXPECT_TRUE(m_ends.empty());
    ASSERT_TRUE(serveUntilEnds(1));
    EXPECT_TRUE(m_ends[0]);
    const NotifyCall expected { "Brevanta", 0, "title", "Coins dropped to 8", "low-lp", "com.brevanta.Test" };
    EXPECT_EQ(m_service->notifyCalls, std::vector { expected });
    settle();
    EXPECT_EQ(m_ends.size(), 1U);
    EXPECT_EQ(m_service->capabilityCalls, 1) << "the capabilities are asked for once";
}

TEST_F(NotificationCenterGtkTest, EscapesTheBodyOnlyForAServiceThatReadsMarkup)
{
    const std::string body = "a < b & \"c\" > <b>d</b> &amp;";
    add("plain", body);
    ASSERT_TRUE(serveUntilEnds(1));
    EXPECT_EQ(m_service->notifyCalls.back().body, body);

    startService({ "body", "body-markup" });
    add("markup", body);
    ASSERT_TRUE(serveUntilEnds(2));
    EXPECT_EQ(m_service->notifyCalls.back().body, "a &lt; b &amp; \"c\" &gt; &lt;b&gt;d&lt;/b&gt; &amp;amp;");
}

TEST_F(NotificationCenterGtkTest, ANotificationTakesThePlaceOfTheOneWithItsIdentifier)
{
    add("a");
    add("b");
    ASSERT_TRUE(serveUntilEnds(2));
    add("a");
    add("a");
    ASSERT_TRUE(serveUntilEnds(4));
    EXPECT_EQ(replacements(), (std::vector<std::uint32_t> { 0, 0, 101, 101 }));
}

TEST_F(NotificationCenterGtkTest, OneThatFollowsBeforeTheAnswerTakesThePlaceToo)
{
    add("a");
    add("a");
    m_center.removeDelivered({ "a" });
    add("a");
    ASSERT_TRUE(serveUntilEnds(3));
    EXPECT_EQ(replacements(), (std::vector<std::uint32_t> { 0, 101, 0 }));
    EXPECT_EQ(m_service->closeCalls, std::vector<std::uint32_t> { 101 });
}

TEST_F(NotificationCenterGtkTest, ASilentAnswerHoldsOnlyItsOwnIdentifier)
{
    m_service->answer = Answer::none;
    add("held");
    ASSERT_TRUE(serveUntil([this] { return m_service->notifyCalls.size() == 1; }));
    m_service->answer = Answer::number;
    add("held");
    add("free");
    ASSERT_TRUE(serveUntilEnds(1));
    EXPECT_EQ(m_service->notifyCalls.size(), 2U);
    m_service->answerHeld();
    ASSERT_TRUE(serveUntilEnds(3));
    EXPECT_EQ(m_service->notifyCalls.back().replaces, 101U);
}

TEST_F(NotificationCenterGtkTest, RemovesWhatIsOnScreenAndNothingElse)
{
    add("a");
    add("b");
    ASSERT_TRUE(serveUntilEnds(2));
    m_center.removeDelivered({ "unknown", "b", "b" });
    settle();
    EXPECT_EQ(m_service->closeCalls, std::vector<std::uint32_t> { 102 });
}

TEST_F(NotificationCenterGtkTest, WhatTheUserClosedIsNeitherReplacedNorRemoved)
{
    add("a");
    add("b");
    ASSERT_TRUE(serveUntilEnds(2));
    m_service->announceClosed(101);
    m_service->announceClosed(102);
    m_service->announceClosed(999);
    settle();
    m_center.removeDelivered({ "b" });
    add("a");
    ASSERT_TRUE(serveUntilEnds(3));
    settle();
    EXPECT_EQ(m_service->notifyCalls.back().replaces, 0U);
    EXPECT_TRUE(m_service->closeCalls.empty());
}

TEST_F(NotificationCenterGtkTest, ANewServiceHasNothingOnScreenAndIsAskedForItsCapabilities)
{
    add("a");
    ASSERT_TRUE(serveUntilEnds(1));
    startService();
    settle();
    EXPECT_EQ(m_service->capabilityCalls, 1);
    add("a");
    ASSERT_TRUE(serveUntilEnds(2));
    EXPECT_EQ(replacements(), std::vector<std::uint32_t> { 0 });
}

TEST_F(NotificationCenterGtkTest, AnErrorReachesTheCallerOnceAndTheNextOneIsTriedAgain)
{
    m_service->answer = Answer::error;
    add("a");
    ASSERT_TRUE(serveUntilEnds(1));
    ASSERT_FALSE(m_ends[0]);
    EXPECT_TRUE(m_ends[0].error().message.contains("refused by the test")) << m_ends[0].error().message;
    m_service->answer = Answer::number;
    add("a");
    ASSERT_TRUE(serveUntilEnds(2));
    EXPECT_TRUE(m_ends[1]);
}

TEST_F(NotificationCenterGtkTest, WithoutAServiceEveryNotificationEndsWithAnErrorAndALaterServiceIsUsed)
{
    m_service.reset();
    add("a");
    add("a");
    add("b");
    ASSERT_TRUE(serveUntilEnds(3));
    for (const auto& end : m_ends)
        EXPECT_FALSE(end);
    startService();
    add("a");
    ASSERT_TRUE(serveUntilEnds(4));
    EXPECT_TRUE(m_ends[3]);
}

TEST_F(NotificationCenterGtkTest, AServiceThatGoesAwayInTheMiddleEndsWhatItOwes)
{
    m_service->answer = Answer::none;
    add("a");
    ASSERT_TRUE(serveUntil([this] { return m_service->notifyCalls.size() == 1; }));
    m_service.reset();
    ASSERT_TRUE(serveUntilEnds(1));
    EXPECT_FALSE(m_ends[0]);
}

TEST_F(NotificationCenterGtkTest, TextThatIsNotUtf8IsMendedRatherThanLost)
{
    m_center.add({ "id\xFF", "ti\xFFtle", "bo\xFF dy" }, [this](auto end) { m_ends.push_back(std::move(end)); });
    ASSERT_TRUE(serveUntilEnds(1));
    EXPECT_EQ(m_service->notifyCalls.back().summary, "ti\uFFFDtle");
    EXPECT_EQ(m_service->notifyCalls.back().body, "bo\uFFFD dy");
}

TEST_F(NotificationCenterGtkTest, ACentreThatGoesAwayIsNotAnsweredAndNothingIsAnsweredTwice)
{
    {
        NotificationCenterGtk shortLived(m_connection.get(), { "Brevanta", "", "" });
        shortLived.add({ "gone", "", "" }, [this](auto end) { m_ends.push_back(std::move(end)); });
    }
    settle();
    EXPECT_TRUE(m_ends.empty());
}

TEST_F(NotificationCenterGtkTest, RemembersTheNewestOfVeryManyNotifications)
{
    constexpr std::size_t count = 250;
    for (std::size_t number = 0; number < count; ++number) {
        add(std::to_string(number));
        ASSERT_TRUE(serveUntilEnds(number + 1));
    }
    m_center.removeDelivered({ "0", "249" });
    settle();
    EXPECT_EQ(m_service->closeCalls, std::vector<std::uint32_t> { 350 });
}

TEST_F(NotificationCenterGtkTest, IsAuthorizedAsLongAsAServiceAnswers)
{
    std::vector<NotificationAuthorization> answers;
    const auto record = [&](NotificationAuthorization answer) { answers.push_back(answer); };
    const auto answersAre = [&](const std::vector<NotificationAuthorization>& expected) {
        const bool came = serveUntil([&] { return answers.size() >= expected.size(); });
        settle();
        return came && answers == expected;
    };
    using enum NotificationAuthorization;
    m_center.getAuthorization(record);
    m_center.requestAuthorization(record);
    EXPECT_TRUE(answers.empty()) << "never from inside the call";
    EXPECT_TRUE(answersAre({ authorized, authorized }));

    m_service.reset();
    hearTheBus();
    m_center.requestAuthorization(record);
    m_center.getAuthorization(record);
    EXPECT_TRUE(serveUntil([&] { return answers.size() == 4; }));
    startService();
    m_center.getAuthorization(record);
    EXPECT_TRUE(answersAre({ authorized, authorized, notDetermined, notDetermined, authorized }));
    {
        NotificationCenterGtk shortLived(m_connection.get(), { "Brevanta", "", "" });
        shortLived.getAuthorization(record);
        shortLived.requestAuthorization(record);
    }
    settle();
    EXPECT_EQ(answers.size(), 5U) << "a centre that has gone answers nothing";
}

TEST(NameOwnerWatchTest, FollowsTheNameFromTheFirstQuestionOn)
{
    const TestBus bus;
    const auto connection = bus.connect();
    int losses = 0;
    std::optional<ScriptedNotificationService> service;
    service.emplace(bus, std::vector<const char*> {});
    const NameOwnerWatch watch(connection.get(), "org.freedesktop.Notifications", [&] { ++losses; });
    const NameOwnerWatch unowned(connection.get(), "org.example.Nobody");
    EXPECT_TRUE(watch.hasOwner()) << "before the loop was ever served";
    EXPECT_FALSE(unowned.hasOwner());
    service.reset();
    EXPECT_TRUE(serveUntil([&] { return !watch.hasOwner(); }));
    EXPECT_EQ(losses, 1);
    service.emplace(bus, std::vector<const char*> {});
    EXPECT_TRUE(serveUntil([&] { return watch.hasOwner(); }));
}

}
