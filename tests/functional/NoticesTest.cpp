#include "WebTest.h"

#include <nlohmann/json.hpp>

namespace brevanta::functional {

namespace {

nlohmann::json reminder(int eventId, const std::string& title = "Stretch", const std::string& body = "It is time.")
{
    return { { "event_id", eventId }, { "task_id", "t" }, { "kind", "fire" }, { "title", title },
        { "notification_title", title }, { "body", body } };
}

nlohmann::json alert(int alertId, double expiresInSeconds, const nlohmann::json& open)
{
    return { { "alert_id", alertId }, { "kind", "task_timer" }, { "notification_title", "Time is up" },
        { "body", "Write the report" }, { "sound_prefix", "task-timer" }, { "expires_in_seconds", expiresInSeconds },
        { "open", open } };
}

nlohmann::json rejection(int eventId, const std::string& reason)
{
    return { { "event_id", eventId }, { "task_id", "t" }, { "task_title", "Games" }, { "closing_session_id", "s" },
        { "reason", reason }, { "kind", "rejected_open" } };
}

// The notices as they reach a service that reads markup and plays sounds.
class NoticesTest : public WebTest {
protected:
    NoticesTest()
        : WebTest({ .notificationCapabilities = { "actions", "body", "body-markup", "sound" } })
    {
    }

    void queue(const std::string& kind, const nlohmann::json& record) { tell("queue " + kind + " " + record.dump()); }

    [[nodiscard]] testing::AssertionResult shows(const std::string& identifier)
    {
        if (bench().notifications().await(identifier))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << identifier << " is not among " << bench().notifications().describe();
    }

    // How many have come, after two more polls that could have brought another one.
    [[nodiscard]] std::size_t countAfterPolls()
    {
        EXPECT_TRUE(service().awaitHandledPolls(2));
        return bench().notifications().all().size();
    }

    [[nodiscard]] RecordedNotification last(const std::string& identifier)
    {
        const auto all = bench().notifications().identified(identifier);
        return all.empty() ? RecordedNotification {} : all.back();
    }

    void restart()
    {
        const auto restarted = bench().restartClient();
        ASSERT_TRUE(restarted) << restarted.error();
        ASSERT_TRUE(service().awaitHandledPolls(2));
    }
};

}

TEST_F(NoticesTest, everyKindIsShownOnceWithItsSoundAndNeverAgainAfterARestart)
{
    queue("reminder", reminder(1));
    queue("alert", alert(2, 600, nullptr));
    queue("rejection", rejection(3, "daily_cap"));
    queue("rejection", rejection(4, "a reason of next year"));
    queue("resume", { { "event_id", 5 }, { "task_id", "t" }, { "task_title", "Work" }, { "closing_session_id", "s" } });
    tell("track com.example.Editor 600");
    struct Row {
        const char* identifier;
        const char* title;
        const char* body;
        const char* sound;
    };
    static constexpr Row rows[] = {
        { "intraday-1", "Stretch", "It is time.", "brevanta-signature.wav" },
        { "task-timer-2", "Time is up", "Write the report", "brevanta-signature.wav" },
        { "app-rejected-3", "App not opened", "You have reached today’s limit for “Games”, so the app was not opened.",
            "brevanta-loss.wav" },
        { "app-rejected-4", "App not opened", "“Games” blocks the app right now, so it was not opened.",
            "brevanta-loss.wav" },
        { "task-resumed-5", "Task resumed", "“Work” is running again.", "brevanta-gain.wav" },
    };
    for (const auto& row : rows) {
        EXPECT_TRUE(shows(row.identifier));
        const auto notification = last(row.identifier);
        EXPECT_EQ(notification.title, row.title);
        EXPECT_EQ(notification.body, row.body);
        EXPECT_EQ(notification.sound, row.sound);
    }
    const auto starts = [this] {
        std::vector<RecordedNotification> found;
        for (const auto& notification : bench().notifications().all()) {
            if (notification.identifier.starts_with("auto-track-"))
                found.push_back(notification);
        }
        return found;
    };
    EXPECT_TRUE(awaitUntil([&] { return starts().size() == 1; }, patience));
    EXPECT_EQ(countAfterPolls(), std::size(rows) + 1) << bench().notifications().describe();
    ASSERT_EQ(starts().size(), 1u);
    EXPECT_EQ(starts().at(0).body, "Brevanta is now tracking your time in Editor.");
    EXPECT_EQ(starts().at(0).sound, "brevanta-signature.wav");

    restart();
    EXPECT_EQ(countAfterPolls(), std::size(rows) + 1) << bench().notifications().describe();
    tell("track none");
    ASSERT_TRUE(awaitUntil([&] { return starts().size() == 2; }, Milliseconds(30000)));
    EXPECT_EQ(starts().at(1).sound, "brevanta-reblock.wav");
    EXPECT_EQ(starts().at(1).body, "Brevanta has stopped tracking your time in Editor.");
}

TEST_F(NoticesTest, aReplyThatComesAfterASignOutShowsNothing)
{
    ASSERT_TRUE(showsPage());
    tell("misbehave delay 4000 on get_status");
    queue("reminder", reminder(1));
    queue("alert", alert(2, 600, nullptr));
    ASSERT_TRUE(service().command("await get_status +1"));
    post("{ type: 'logout' }");
    tell("behave");
    EXPECT_EQ(countAfterPolls(), 0u) << bench().notifications().describe();

    post("{ type: 'auth_token', token: 'tok-another' }");
    ASSERT_TRUE(service().command("await set_auth_token 1"));
    EXPECT_EQ(countAfterPolls(), 0u) << bench().notifications().describe();
    queue("reminder", reminder(3));
    EXPECT_TRUE(shows("intraday-3"));
    EXPECT_EQ(countAfterPolls(), 1u) << bench().notifications().describe();
}

TEST_F(NoticesTest, twoHundredAreRememberedAndTheOldestIsForgotten)
{
    auto reminders = nlohmann::json::array();
    for (int eventId = 1; eventId <= 200; ++eventId)
        reminders.push_back(reminder(eventId));
    tell("set pending_reminders " + reminders.dump());
    EXPECT_TRUE(shows("intraday-200"));
    EXPECT_EQ(countAfterPolls(), 200u) << "a service that repeats them forever";
    tell("set pending_reminders " + nlohmann::json { reminder(201) }.dump());
    EXPECT_TRUE(shows("intraday-201"));
    tell("set pending_reminders " + nlohmann::json { reminder(3), reminder(1) }.dump());
    EXPECT_TRUE(bench().notifications().await("intraday-1", 2)) << "it was the oldest";
    EXPECT_EQ(countAfterPolls(), 202u) << "the others are remembered";
}

TEST_F(NoticesTest, theLanguageIsTheUsersFromTheNextNoticeOn)
{
    ASSERT_TRUE(showsPage());
    post("{ type: 'set_locale_preference', preference: 'es' }");
    queue("rejection", rejection(1, "coins_depleted"));
    ASSERT_TRUE(shows("app-rejected-1"));
    EXPECT_EQ(last("app-rejected-1").title, "No se ha abierto la app");
    post("{ type: 'set_locale_preference', preference: 'zh-Hans' }");
    queue("rejection", rejection(2, "coins_depleted"));
    ASSERT_TRUE(shows("app-rejected-2"));
    EXPECT_TRUE(last("app-rejected-2").body.contains("“Games”")) << last("app-rejected-2").body;
    EXPECT_NE(last("app-rejected-2").title, "App not opened");
}

TEST_F(NoticesTest, aClickOpensTheWindowOrATrustedAddressAndNothingElse)
{
    ASSERT_TRUE(showsPage());
    bench().display().pressCloseButton(bench().display().windowsTitled(BrevantaClient::windowTitle).front());
    ASSERT_TRUE(showsWindows(0));
    queue("alert", alert(1, 600, "https://evil.example/"));
    ASSERT_TRUE(shows("task-timer-1"));
    bench().notifications().click("task-timer-1");
    EXPECT_TRUE(showsWindows(1));
    EXPECT_TRUE(openedOutside().empty());

    const auto trusted = web().url() + "tasks/2";
    queue("alert", alert(2, 600, trusted));
    ASSERT_TRUE(shows("task-timer-2"));
    bench().notifications().click("task-timer-2");
    EXPECT_TRUE(awaitByAsking([&] { return openedOutside() == std::vector<std::string> { trusted }; }, patience));
}

TEST_F(NoticesTest, theSoundsAreInTheUsersFolder)
{
    EXPECT_TRUE(logs("(kept 0)"));
    EXPECT_TRUE(logs("[NotificationSounds] installed brevanta-gain.aiff, brevanta-loss.aiff, brevanta-reblock.aiff, "
                     "brevanta-signature.aiff into "));
    restart();
    EXPECT_TRUE(logs("[NotificationSounds] installed nothing into "));
    EXPECT_TRUE(logs("(kept 4)"));
}

TEST_F(NoticesTest, whateverATextHoldsIsShownAsItIs)
{
    struct Row {
        const char* title;
        const char* body;
        const char* shownBody;
    };
    static constexpr Row rows[] = {
        { "<b>Bold</b> & \"quoted\"", "<a href=\"https://evil.example\">click</a> & 'this'",
            "&lt;a href=\"https://evil.example\"&gt;click&lt;/a&gt; &amp; 'this'" },
        { "שלום עולם", "מתיחה 🙂 עכשיו", "מתיחה 🙂 עכשיו" },
        { "two\nlines", "a\tb\nc", "a\tb\nc" },
    };
    int eventId = 0;
    for (const auto& row : rows) {
        queue("reminder", reminder(++eventId, row.title, row.body));
        const auto identifier = "intraday-" + std::to_string(eventId);
        ASSERT_TRUE(shows(identifier));
        EXPECT_EQ(last(identifier).title, row.title);
        EXPECT_EQ(last(identifier).body, row.shownBody);
        EXPECT_EQ(last(identifier).sound, "brevanta-signature.wav");
    }
}

}
