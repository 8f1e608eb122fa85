#include "menubar/NoticeConsumer.h"

#include "fakes/FakeMainLoop.h"
#include "fakes/FakePorts.h"
#include "notify/FeedbackPresenter.h"
#include "notify/HabitReminderPresenter.h"
#include "notify/LocalAlertPresenter.h"
#include "notify/NotificationHelper.h"
#include "support/StatusReply.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

Json reminder(int eventId)
{
    return { { "event_id", eventId }, { "task_id", "t" }, { "kind", "overdue" }, { "title", "Read" },
        { "notification_title", "Time to read" }, { "body", "Ten pages" } };
}

Json localAlert(int alertId, double expiresInSeconds)
{
    return { { "alert_id", alertId }, { "kind", "timer" }, { "notification_title", "Done" }, { "body", "25 minutes" },
        { "sound_prefix", "task-timer" }, { "expires_in_seconds", expiresInSeconds }, { "open", "/tasks" } };
}

Json rejection(int eventId)
{
    return { { "event_id", eventId }, { "reason", "situation" }, { "kind", "rejected_open" } };
}

Json resume(int eventId) { return { { "event_id", eventId }, { "task_title", "Work" } }; }

class NoticeConsumerTest : public testing::Test {
protected:
    void poll(const Json& reply)
    {
        consumer.pollBegan();
        consumer.consume(statusWith(reply));
        mainLoop.runPosted();
    }

    [[nodiscard]] std::vector<std::string> added() const
    {
        std::vector<std::string> identifiers;
        for (const auto& notification : center.added)
            identifiers.push_back(notification.identifier);
        return identifiers;
    }

    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    FakeSystemLog log;
    FakeUserDefaults defaults;
    FakeNotificationCenter center { mainLoop };
    SystemNotificationCenterClient client { center, mainLoop, [this] { return clock.continuousSeconds(); } };
    NotificationHelper helper { client, log };
    HabitReminderPresenter reminders { defaults };
    LocalAlertPresenter localAlerts { defaults };
    NoticeCopy copy { {}, {} };
    FeedbackPresenter feedback { defaults, [this]() -> const NoticeCopy& { return copy; } };
    NoticeConsumer consumer { { .clock = clock,
        .defaults = defaults,
        .reminders = reminders,
        .localAlerts = localAlerts,
        .feedback = feedback,
        .helper = helper } };
};

using Names = std::vector<std::string>;

}

TEST_F(NoticeConsumerTest, EveryQueueOfAStatusIsPostedOnceInOneOrder)
{
    const Json reply { { "pending_task_resumes", { resume(1) } }, { "pending_app_rejections", { rejection(2) } },
        { "pending_local_alerts", { localAlert(3, 60) } }, { "pending_reminders", { reminder(4), reminder(5) } } };
    poll(reply);
    poll(reply);
    EXPECT_EQ(added(), (Names { "intraday-4", "intraday-5", "task-timer-3", "app-rejected-2", "task-resumed-1" }));
    EXPECT_EQ(center.added[2].userInfo, (NotificationUserInfo { { "open", "/tasks" } }));
    EXPECT_EQ(center.added[2].sound, "brevanta-signature.aiff");
}

TEST_F(NoticeConsumerTest, TheSwitchForBlockedApplicationsIsHeeded)
{
    poll({ { "pending_app_rejections", { rejection(2) } }, { "notify_macos_app_blocked", false } });
    poll({ { "pending_app_rejections", { rejection(2), rejection(3) } }, { "notify_macos_app_blocked", true } });
    EXPECT_EQ(added(), Names { "app-rejected-3" });
}

TEST_F(NoticeConsumerTest, AReplyToAPollOfBeforeASignOutShowsNothingAndNothingLater)
{
    const Json reply { { "pending_reminders", { reminder(1) } }, { "pending_local_alerts", { localAlert(2, 60) } },
        { "pending_app_rejections", { rejection(3) } } };
    consumer.pollBegan();
    reminders.signedOut(SignedOut::yes);
    consumer.consume(statusWith(reply));
    poll(reply);
    ASSERT_TRUE(reminders.signedIn(reminders.logoutSequence()));
    poll(reply);
    mainLoop.runPosted();
    EXPECT_TRUE(added().empty());
    poll({ { "pending_reminders", { reminder(4) } } });
    EXPECT_EQ(added(), Names { "intraday-4" });
}

TEST_F(NoticeConsumerTest, WhatWaitsForThePermissionIsShownToNobodyElseAndToItsUser)
{
    center.holdsRequests = true;
    const auto signIn
        = [&](const char* token) { EXPECT_TRUE(reminders.tokenAccepted(token, reminders.logoutSequence())); };
    Names shown;
    int event = 0;
    const auto waitingThrough = [&](const char* what, const std::function<void()>& change, bool isShown) {
        center.authorization = NotificationAuthorization::denied;
        client.getAuthorization([](auto) { });
        mainLoop.runPosted();
        poll({ { "pending_reminders", { reminder(++event) } }, { "auth_token", "ada" } });
        if (isShown)
            shown.push_back("intraday-" + std::to_string(event));
        change();
        center.answerHeldRequests(NotificationAuthorization::authorized);
        mainLoop.runPosted();
        EXPECT_EQ(added(), shown) << what;
    };
    const auto signOut = [&] { reminders.signedOut(SignedOut::yes); };
    waitingThrough("the token that the service held at the launch", [&] { signIn("ada"); }, true);
    waitingThrough("another user's", [&] { signIn("bob"); }, false);
    waitingThrough("the same once more", [&] { signIn("bob"); }, true);
    waitingThrough("signed out", signOut, false);
    signIn("bob");
    waitingThrough("out and in again", [&] { signOut(), signIn("bob"); }, false);
}

TEST_F(NoticeConsumerTest, AnAlertThatHasExpiredOnArrivalIsDropped)
{
    poll({ { "pending_local_alerts", { localAlert(1, -1), localAlert(2, 0) } } });
    EXPECT_EQ(added(), Names { "task-timer-2" });
    EXPECT_EQ(log.lines, Names { "[NotificationHelper] dropped task-timer-1: its deadline has passed" });
}

}
