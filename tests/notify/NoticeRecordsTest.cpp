#include "notify/NoticeRecords.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace brevanta {

namespace {

template <typename Record> std::vector<Record> decodeAll(const Json& array)
{
    json::Parser parser;
    PaddedBuffer bytes;
    bytes.assign(array.dump());
    return decodeLossyArray<Record>(*json::asArray(*json::parse(parser, bytes)));
}

Json reminder(std::int64_t id)
{
    return { { "event_id", id }, { "task_id", "t" }, { "kind", "fire" }, { "title", "Stretch" },
        { "notification_title", "Time to stretch" }, { "body", "Two minutes" } };
}

Json with(Json record, const char* key, const Json& value)
{
    record[key] = value;
    return record;
}

Json without(Json record, const char* key)
{
    record.erase(key);
    return record;
}

}

TEST(NoticeRecords, AReminderKeepsEveryFieldAndAllBitsOfItsIdentifier)
{
    const auto reminders = decodeAll<PendingReminder>(Json::array({ with(reminder(INT64_MAX), "kind", "overdue") }));
    ASSERT_EQ(reminders.size(), 1u);
    EXPECT_EQ(reminders[0],
        (PendingReminder {
            INT64_MAX, "t", PendingReminder::Kind::overdue, "Stretch", "Time to stretch", "Two minutes" }));
}

TEST(NoticeRecords, ABadElementNeverCostsItsNeighbours)
{
    const Json whole = reminder(2);
    for (const auto& bad :
        { with(whole, "kind", "later"), with(whole, "body", ""), with(whole, "notification_title", "\u00A0\u3000\t"),
            with(whole, "event_id", "2"), with(whole, "event_id", 2.5), with(whole, "event_id", true),
            without(whole, "task_id"), with(whole, "title", nullptr), Json(7), Json("text"), Json(nullptr),
            Json::array({ whole }), Json::object() }) {
        const auto reminders = decodeAll<PendingReminder>(Json::array({ reminder(1), bad, reminder(3) }));
        ASSERT_EQ(reminders.size(), 2u) << bad;
        EXPECT_EQ(reminders[0].eventId, 1);
        EXPECT_EQ(reminders[1].eventId, 3);
    }
    EXPECT_TRUE(decodeAll<PendingReminder>(Json::array()).empty());
}

TEST(NoticeRecords, ALocalAlertNeedsATitleOrABodyAndATargetThatIsText)
{
    const Json alert { { "alert_id", 9 }, { "kind", "timer" }, { "notification_title", "Done" }, { "body", "Over" },
        { "sound_prefix", "task-timer" }, { "expires_in_seconds", 1.5 }, { "open", "app" } };
    const auto untitled = with(with(alert, "notification_title", "\u3000"), "open", 5);
    const auto alerts = decodeAll<PendingLocalAlert>(Json::array({ alert, untitled,
        without(with(alert, "body", ""), "open"), without(alert, "sound_prefix"), with(untitled, "body", " ") }));
    ASSERT_EQ(alerts.size(), 3u);
    EXPECT_EQ(alerts[0].open, "app");
    EXPECT_DOUBLE_EQ(alerts[0].expiresInSeconds, 1.5);
    EXPECT_FALSE(alerts[1].open);
    EXPECT_FALSE(alerts[2].open);
}

TEST(NoticeRecords, RejectionsAndResumesTakeIdentifiersAsTextOrInteger)
{
    const Json rejection { { "event_id", 4 }, { "task_id", 77 }, { "task_title", "Write" },
        { "closing_session_id", "s-1" }, { "reason", "daily_cap" }, { "kind", "session_ended" } };
    const auto rejections = decodeAll<PendingAppRejection>(Json::array({ rejection, with(rejection, "kind", "other"),
        without(without(rejection, "task_id"), "task_title"), with(rejection, "task_id", Json::object()),
        with(rejection, "event_id", "\u00A0"), without(rejection, "event_id"), with(rejection, "event_id", true) }));
    ASSERT_EQ(rejections.size(), 2u);
    EXPECT_EQ(rejections[0],
        (PendingAppRejection { "4", "77", "Write", "s-1", "daily_cap", PendingAppRejection::Kind::sessionEnded }));
    EXPECT_FALSE(rejections[1].taskId);

    const auto resumes = decodeAll<PendingTaskResume>(Json::array({ { { "event_id", "e-5" }, { "task_title", "Read" } },
        { { "event_id", 6 }, { "task_id", "" }, { "closing_session_id", 8 } } }));
    EXPECT_EQ(resumes,
        (std::vector<PendingTaskResume> {
            { "e-5", std::nullopt, "Read", std::nullopt }, { "6", std::nullopt, std::nullopt, "8" } }));
}

}
