#include "fakes/FakePorts.h"
#include "notify/FeedbackPresenter.h"
#include "notify/HabitReminderPresenter.h"
#include "notify/LocalAlertPresenter.h"

#include <gtest/gtest.h>
#include <limits>

namespace brevanta {

namespace {

using Identifiers = std::vector<std::int64_t>;
using Names = std::vector<std::string>;

PendingReminder reminder(std::int64_t eventId)
{
    return { .eventId = eventId,
        .taskId = "t",
        .kind = PendingReminder::Kind::fire,
        .title = "Read",
        .notificationTitle = "Time to read",
        .body = "Ten pages" };
}

PendingLocalAlert alert(std::int64_t alertId, const std::string& soundPrefix = "task-timer")
{
    return { .alertId = alertId,
        .kind = "timer",
        .notificationTitle = "Done",
        .body = "25 minutes",
        .soundPrefix = soundPrefix,
        .expiresInSeconds = 30,
        .open = std::nullopt };
}

PendingAppRejection rejection(std::int64_t eventId, const std::string& reason = "daily_cap")
{
    return { .eventId = std::to_string(eventId),
        .taskId = std::nullopt,
        .taskTitle = "Games",
        .closingSessionId = std::nullopt,
        .reason = reason,
        .kind = PendingAppRejection::Kind::rejectedOpen };
}

PendingTaskResume resume(std::int64_t eventId, const std::string& taskTitle = "Work")
{
    return { .eventId = std::to_string(eventId),
        .taskId = std::nullopt,
        .taskTitle = taskTitle,
        .closingSessionId = std::nullopt };
}

const NoticeCopy& copy()
{
    static const NoticeCopy words { {},
        { { "macApp.notice.rejection.rejectedOpen.title", "Not opened" },
            { "macApp.notice.rejection.rejectedOpen.dailyCap.task", "{task} is over" },
            { "macApp.notice.rejection.sessionEnded.title", "Ended" },
            { "macApp.notice.rejection.sessionEnded.title.app", "{app} ended" },
            { "macApp.notice.rejection.sessionEnded.unspecified", "Blocked" },
            { "macApp.notice.taskResumed.title", "Resumed" }, { "macApp.notice.taskResumed.body", "Goes on" },
            { "macApp.notice.taskResumed.body.task", "{task} goes on" },
            { "macApp.notice.taskResumed.body.app", "Goes on after {app}" } } };
    return words;
}

template <typename Notification> Names names(const std::vector<Notification>& notifications)
{
    Names identifiers;
    for (const auto& notification : notifications)
        identifiers.push_back(notification.identifier);
    return identifiers;
}

// The three presenters under the names of what they keep, each made anew for each delivery, as after a restart.
struct Presenter {
    std::string seenKey;
    std::string prefix;
    std::function<Names(UserDefaults&, const Identifiers&, std::int64_t generation)> deliver;

    // NOLINTNEXTLINE(readability-identifier-naming): GoogleTest's own name for it.
    friend void PrintTo(const Presenter& presenter, std::ostream* out) { *out << presenter.prefix; }
};

template <typename Record>
std::vector<Record> recordsOf(const Identifiers& identifiers, const std::function<Record(std::int64_t)>& make)
{
    std::vector<Record> records;
    for (const auto identifier : identifiers)
        records.push_back(make(identifier));
    return records;
}

std::vector<Presenter> allPresenters()
{
    return {
        { "habitReminders.seenEventIds", "intraday-",
            [](auto& defaults, const auto& identifiers, auto generation) {
                const auto records = recordsOf<PendingReminder>(identifiers, reminder);
                return names(HabitReminderPresenter(defaults).deliver(records, generation));
            } },
        { "localAlerts.seenAlertIds", "task-timer-",
            [](auto& defaults, const auto& identifiers, auto generation) {
                const auto records = recordsOf<PendingLocalAlert>(identifiers, [](auto id) { return alert(id); });
                return names(LocalAlertPresenter(defaults).deliver(records, generation, 0));
            } },
        { "macFeedback.seenEventIds", "app-rejected-",
            [](auto& defaults, const auto& identifiers, auto generation) {
                const auto records = recordsOf<PendingAppRejection>(identifiers, [](auto id) { return rejection(id); });
                return names(FeedbackPresenter(defaults, copy).deliver({ records, {}, true }, generation));
            } },
        { "macFeedback.seenEventIds", "task-resumed-",
            [](auto& defaults, const auto& identifiers, auto generation) {
                const auto records = recordsOf<PendingTaskResume>(identifiers, [](auto id) { return resume(id); });
                return names(FeedbackPresenter(defaults, copy).deliver({ {}, records, true }, generation));
            } },
    };
}

Identifiers upTo(std::int64_t last)
{
    Identifiers identifiers;
    for (std::int64_t identifier = 1; identifier <= last; ++identifier)
        identifiers.push_back(identifier);
    return identifiers;
}

class PresentersTest : public testing::TestWithParam<Presenter> {
protected:
    Names deliver(const Identifiers& identifiers, std::int64_t generation = 0)
    {
        return GetParam().deliver(defaults, identifiers, generation);
    }
    [[nodiscard]] std::optional<DefaultsValue> seen() const { return defaults.get(GetParam().seenKey); }
    [[nodiscard]] Names named(const Identifiers& identifiers) const
    {
        Names result;
        for (const auto identifier : identifiers)
            result.push_back(GetParam().prefix + std::to_string(identifier));
        return result;
    }

    FakeUserDefaults defaults;
};

INSTANTIATE_TEST_SUITE_P(All, PresentersTest, testing::ValuesIn(allPresenters()));

}

TEST_P(PresentersTest, EachNoticeIsShownOnceAlsoAfterARestart)
{
    EXPECT_EQ(deliver({ 7, 3, 7 }), named({ 7, 3 }));
    EXPECT_EQ(deliver({ 3, 5, 7 }), named({ 5 }));
    EXPECT_EQ(seen(), DefaultsValue(Identifiers { 7, 3, 5 }));
    EXPECT_EQ(deliver({ 7, 5 }), Names {});
    constexpr auto extreme = std::numeric_limits<std::int64_t>::min();
    EXPECT_EQ(deliver({ extreme, -1 }), named({ extreme, -1 }));
}

TEST_P(PresentersTest, NothingNewWritesNothing)
{
    EXPECT_EQ(deliver({}), Names {});
    EXPECT_EQ(seen(), std::nullopt);
    Identifiers tooMany = upTo(250);
    defaults.set(GetParam().seenKey, tooMany);
    EXPECT_EQ(deliver({ 1, 250 }), Names {});
    EXPECT_EQ(seen(), DefaultsValue(tooMany)) << "the list is cut only when it is written";
}

TEST_P(PresentersTest, TheOldestOfTwoHundredAndOneIsForgotten)
{
    EXPECT_EQ(deliver(upTo(200)).size(), 200U);
    EXPECT_EQ(deliver({ 201 }), named({ 201 }));
    EXPECT_EQ(deliver({ 2, 1 }), named({ 1 }));
    EXPECT_EQ(std::get<Identifiers>(seen().value()).size(), 200U);
    EXPECT_EQ(std::get<Identifiers>(seen().value()).back(), 1);

    auto twice = upTo(1201);
    twice.erase(twice.begin(), twice.begin() + 300);
    const auto once = named(twice);
    twice.push_back(301);
    EXPECT_EQ(deliver(twice), once) << "what one batch holds twice is shown once, however long the batch";
}

TEST_P(PresentersTest, WhatIsStoredInAnotherShapeCountsAsEmpty)
{
    for (const DefaultsValue& stored : { DefaultsValue(std::int64_t { 5 }), DefaultsValue("5"), DefaultsValue(true) }) {
        defaults.set(GetParam().seenKey, stored);
        defaults.set("habitReminders.signedOut", std::string("yes"));
        defaults.set("habitReminders.deliveryGeneration", 4.0);
        EXPECT_EQ(deliver({ 5 }), named({ 5 }));
    }
}

TEST_P(PresentersTest, WhatBelongsToAnOlderGenerationOrToNobodyIsSeenAndNeverShown)
{
    HabitReminderPresenter account(defaults);
    const DeliveryGeneration generation(defaults);
    const auto before = generation.current();
    account.signedOut(SignedOut::yes);
    EXPECT_EQ(deliver({ 1 }, before), Names {}) << "the reply came after the sign-out";
    EXPECT_EQ(deliver({ 2 }, generation.current()), Names {}) << "nobody is signed in";
    const auto whileSignedOut = generation.current();
    EXPECT_TRUE(account.signedIn(account.logoutSequence()));
    EXPECT_EQ(deliver({ 3 }, whileSignedOut), Names {});
    EXPECT_EQ(deliver({ 4 }, generation.current() + 1), Names {});
    EXPECT_EQ(deliver({ 1, 2, 3, 4, 5 }, generation.current()), named({ 5 }));
}

TEST(DeliveryGenerationTest, ASignInCountsOnlyWhenNobodySignedOutSince)
{
    FakeUserDefaults defaults;
    DeliveryGeneration generation(defaults);
    EXPECT_TRUE(generation.allows(0));
    const auto stale = generation.logoutSequence();
    generation.signedOut(SignedOut::yes);
    EXPECT_EQ(generation.current(), 1);
    EXPECT_EQ(generation.logoutSequence(), 1);
    EXPECT_FALSE(generation.signedIn(stale));
    EXPECT_EQ(generation.current(), 1);
    EXPECT_FALSE(generation.allows(1));

    DeliveryGeneration restarted(defaults);
    EXPECT_TRUE(restarted.signedIn(1));
    EXPECT_TRUE(restarted.allows(2));
    EXPECT_FALSE(restarted.allows(1));
    restarted.signedOut(SignedOut::no);
    EXPECT_TRUE(restarted.allows(3));
    EXPECT_EQ(restarted.logoutSequence(), 1) << "only a sign-out is one";
    defaults.set("habitReminders.deliveryGeneration", std::numeric_limits<std::int64_t>::max());
    restarted.signedOut(SignedOut::no);
    EXPECT_EQ(generation.current(), 1) << "numbers that have run out begin anew";
}

TEST(HabitReminderPresenterTest, ANotificationHasTheTitleThatIsMadeForIt)
{
    FakeUserDefaults defaults;
    defaults.set("habitReminders.deliveryGeneration", std::int64_t { 9 });
    EXPECT_EQ(HabitReminderPresenter(defaults).deliver({ reminder(4) }, 9),
        (std::vector<HabitReminderPresenter::Notification> {
            { .identifier = "intraday-4", .title = "Time to read", .body = "Ten pages", .generation = 9 } }));
}

TEST(LocalAlertPresenterTest, AnAlertBringsItsSoundItsDeadlineAndWhatItOpens)
{
    FakeUserDefaults defaults;
    auto opening = alert(2, "my-own");
    opening.open = "/tasks/2";
    opening.expiresInSeconds = 0.5;
    EXPECT_EQ(LocalAlertPresenter(defaults).deliver({ alert(1), opening }, 0, 100),
        (std::vector<LocalAlertPresenter::Notification> { { .identifier = "task-timer-1",
                                                              .title = "Done",
                                                              .body = "25 minutes",
                                                              .generation = 0,
                                                              .deadlineMono = 130,
                                                              .userInfo = {} },
            { .identifier = "my-own-2",
                .title = "Done",
                .body = "25 minutes",
                .generation = 0,
                .deadlineMono = 100.5,
                .userInfo = { { "open", "/tasks/2" } } } }));
}

TEST(FeedbackPresenterTest, RejectionsComeFirstInTheWordsOfTheirReasonAndKind)
{
    FakeUserDefaults defaults;
    auto ended = rejection(2, "brand_new_reason");
    ended.kind = PendingAppRejection::Kind::sessionEnded;
    ended.taskTitle = std::nullopt;
    ended.closingSessionId = "unknown";
    auto named = ended;
    named.eventId = "e-5";
    named.closingSessionId = "s";
    auto follows = resume(6, "\u00A0");
    follows.closingSessionId = "s";
    const std::vector rejections { rejection(1), ended, named, named };
    const std::vector resumes { resume(3), resume(4, " \n\u3000"), follows };
    FeedbackPresenter presenter(defaults, copy,
        [](const auto& session) { return session == "s" ? std::optional<std::string>("Editor") : std::nullopt; });
    EXPECT_EQ(presenter.deliver({ rejections, resumes, std::nullopt }, 0),
        (std::vector<FeedbackPresenter::Notification> {
            { .identifier = "app-rejected-1", .title = "Not opened", .body = "Games is over", .generation = 0 },
            { .identifier = "app-rejected-2", .title = "Ended", .body = "Blocked", .generation = 0 },
            { .identifier = "app-rejected-e-5", .title = "Editor ended", .body = "Blocked", .generation = 0 },
            { .identifier = "task-resumed-3", .title = "Resumed", .body = "Work goes on", .generation = 0 },
            { .identifier = "task-resumed-4", .title = "Resumed", .body = "Goes on", .generation = 0 },
            { .identifier = "task-resumed-6", .title = "Resumed", .body = "Goes on after Editor", .generation = 0 } }));
    EXPECT_EQ(FeedbackPresenter(defaults, copy).deliver({ { named }, {}, std::nullopt }, 0).size(), 0U);
}

TEST(FeedbackPresenterTest, SwitchedOffRejectionsAreSeenAndNotShown)
{
    FakeUserDefaults defaults;
    FeedbackPresenter presenter(defaults, copy);
    const std::vector rejections { rejection(1) };
    const std::vector resumes { resume(2) };
    EXPECT_EQ(names(presenter.deliver({ rejections, resumes, false }, 0)), Names { "task-resumed-2" });
    EXPECT_EQ(names(presenter.deliver({ rejections, resumes, true }, 0)), Names {});
}

}
