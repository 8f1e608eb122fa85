#include "gtk/NotificationCenterGtk.h"
#include "host/ScriptedNotificationService.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>

namespace brevanta {

namespace {

using Answer = ScriptedNotificationService::Answer;
using Ends = std::vector<std::expected<void, NotificationError>>;

// With empty files in it; gone with the test.
class TemporaryFolder {
public:
    TemporaryFolder()
    {
        const GLibPtr<char> path(g_dir_make_tmp("brevanta-sounds-XXXXXX", nullptr));
        m_path = path.get();
    }
    ~TemporaryFolder() { std::filesystem::remove_all(m_path); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }
    // The file's whole path.
    std::filesystem::path write(const std::string& name) const // NOLINT(modernize-use-nodiscard)
    {
        std::ofstream(m_path / name).flush();
        return m_path / name;
    }

private:
    std::filesystem::path m_path;
};

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
    const TemporaryFolder m_sounds;
    std::vector<DesktopSound> m_played;
    NotificationCenterGtk m_center { m_connection.get(), { "Brevanta", "", "com.brevanta.Test" },
        { .folders = { m_sounds.path() / "none", m_sounds.path() },
            .play = [this](const DesktopSound& sound) { m_played.push_back(sound); } } };
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
    const NotifyCall expected { .applicationName = "Brevanta",
        .replaces = 0,
        .summary = "title",
        .body = "Coins dropped to 8",
        .identifierHint = "low-lp",
        .desktopEntryHint = "com.brevanta.Test",
        .actions = {},
        .soundFileHint = {},
        .soundNameHint = {} };
    EXPECT_EQ(m_service->notifyCalls, std::vector { expected });
    settle();
    EXPECT_EQ(m_ends.size(), 1U);
    EXPECT_EQ(m_service->capabilityCalls, 1) << "the capabilities are asked for once";
}

TEST_F(NotificationCenterGtkTest, EscapesTheBodyWhateverTheServiceClaimsToRead)
{
    const std::string body = "a < b & \"c\" > <b>d</b> &amp;";
    const std::string escaped = "a &lt; b &amp; \"c\" &gt; &lt;b&gt;d&lt;/b&gt; &amp;amp;";
    add("plain", body);
    ASSERT_TRUE(serveUntilEnds(1));
    EXPECT_EQ(m_service->notifyCalls.back().body, escaped);

    startService({ "body", "body-markup" });
    add("markup", body);
    ASSERT_TRUE(serveUntilEnds(2));
    EXPECT_EQ(m_service->notifyCalls.back().body, escaped);
}

TEST_F(NotificationCenterGtkTest, TheSoundIsHeardOnceFromTheServiceOrFromUs)
{
    const auto aiff = m_sounds.write("brevanta-gain.aiff");
    const auto wave = m_sounds.write("brevanta-loss.wav");
    m_sounds.write("brevanta-loss.aiff");
    struct Case {
        std::optional<std::string> sound;
        DesktopSound expected;
    };
    const Case cases[]
        = { { "brevanta-gain.aiff", { aiff } }, { "brevanta-loss.aiff", { wave } }, { "missing.aiff", {} },
              { "../" + m_sounds.path().filename().string() + "/none/..", {} }, { "", {} }, { std::nullopt, {} } };
    for (const bool serviceSounds : { true, false }) {
        startService(serviceSounds ? std::vector { "body", "sound" } : std::vector { "body" });
        for (const auto& [sound, expected] : cases) {
            m_played.clear();
            m_ends.clear();
            m_center.add({ "a", "", "", sound }, [this](auto end) { m_ends.push_back(std::move(end)); });
            ASSERT_TRUE(serveUntilEnds(1));
            const auto& call = m_service->notifyCalls.back();
            EXPECT_EQ(call.soundFileHint, serviceSounds ? expected.file.string() : "");
            EXPECT_EQ(call.soundNameHint, serviceSounds && expected.file.empty() ? "message-new-instant" : "");
            EXPECT_EQ(m_played, serviceSounds ? std::vector<DesktopSound> {} : std::vector { expected });
        }
    }
    m_played.clear();
    m_service->answer = Answer::error;
    add("refused");
    ASSERT_TRUE(serveUntilEnds(2));
    EXPECT_TRUE(m_played.empty()) << "what is not shown is not heard";
}

TEST_F(NotificationCenterGtkTest, AClickTellsWhatTheNotificationCarriesAndNothingElseIsAClick)
{
    std::vector<NotificationResponse> told;
    const auto click = [this](std::uint32_t number, const char* action) {
        m_service->announceAction(number, action);
        settle();
    };
    startService({ "body", "actions" });
    m_center.add({ "a", "", "", {}, { { "open", "/1" } } }, [](auto) { });
    m_center.add({ "a", "", "", {}, { { "open", "/2" } } }, [](auto) { });
    add("b");
    ASSERT_TRUE(serveUntilEnds(1));
    settle();
    EXPECT_EQ(m_service->notifyCalls.back().actions, (std::vector<std::string> { "default", "Open" }));
    click(101, "default");
    m_center.setResponseHandler([&](const NotificationResponse& response) { told.push_back(response); });
    EXPECT_TRUE(told.empty()) << "never from inside the call";
    const std::vector<NotificationResponse> first { { "a", { { "open", "/2" } } } };
    EXPECT_TRUE(serveUntil([&] { return !told.empty(); }));
    EXPECT_EQ(told, first) << "the click that came before there was a handler";

    click(101, "other");
    click(999, "default");
    click(0, "default");
    m_service->announceClosed(101);
    click(101, "default");
    EXPECT_EQ(told, first);
    click(102, "default");
    EXPECT_TRUE(serveUntil([&] { return told.size() == 2; }));
    EXPECT_EQ(told.back(), (NotificationResponse { "b", {} }));
    m_center.setResponseHandler({});
    click(102, "default");
    EXPECT_EQ(told.size(), 2U);
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
        NotificationCenterGtk shortLived(m_connection.get(), { "Brevanta", "", "" }, {});
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
    const auto recordAnswer = [&](const NotificationAuthorizationAnswer& answer) {
        EXPECT_EQ(answer.error.empty(), answer.authorization == authorized) << answer.error;
        record(answer.authorization);
    };
    m_center.getAuthorization(record);
    m_center.requestAuthorization(recordAnswer);
    EXPECT_TRUE(answers.empty()) << "never from inside the call";
    EXPECT_TRUE(answersAre({ authorized, authorized }));

    m_service.reset();
    hearTheBus();
    m_center.requestAuthorization(recordAnswer);
    m_center.getAuthorization(record);
    EXPECT_TRUE(serveUntil([&] { return answers.size() == 4; }));
    startService();
    m_center.getAuthorization(record);
    EXPECT_TRUE(answersAre({ authorized, authorized, notDetermined, notDetermined, authorized }));
    {
        NotificationCenterGtk shortLived(m_connection.get(), { "Brevanta", "", "" }, {});
        shortLived.getAuthorization(record);
        shortLived.requestAuthorization(recordAnswer);
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
