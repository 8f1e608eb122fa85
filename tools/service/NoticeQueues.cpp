#include "service/NoticeQueues.h"

#include "service/RecordIdentifiers.h"

#include <cstddef>
#include <string>
#include <utility>

namespace brevanta::service {

struct NoticeName {
    NoticeKind kind;
    std::string_view name;
    const char* replyKey;
};

static constexpr std::array noticeNames {
    NoticeName { NoticeKind::reminder, "reminder", "pending_reminders" },
    NoticeName { NoticeKind::alert, "alert", "pending_local_alerts" },
    NoticeName { NoticeKind::rejection, "rejection", "pending_app_rejections" },
    NoticeName { NoticeKind::resume, "resume", "pending_task_resumes" },
};

static std::size_t indexOf(NoticeKind kind) { return static_cast<std::size_t>(kind); }

std::optional<NoticeKind> noticeKindNamed(std::string_view name)
{
    for (const auto& entry : noticeNames) {
        if (entry.name == name)
            return entry.kind;
    }
    return std::nullopt;
}

static nlohmann::json defaultRecord(NoticeKind kind, std::int64_t identifier)
{
    const auto number = std::to_string(identifier);
    const auto taskId = "task-" + number;
    switch (kind) {
    case NoticeKind::reminder:
        return { { "event_id", identifier }, { "task_id", taskId }, { "kind", "fire" }, { "title", "Morning stretch" },
            { "notification_title", "Morning stretch" }, { "body", "Ten minutes, then the day can start." } };
    case NoticeKind::alert:
        return { { "alert_id", identifier }, { "kind", "task_timer" }, { "notification_title", "Timer finished" },
            { "body", "“Write the report” has run for 25 minutes." }, { "sound_prefix", "task-timer" },
            { "expires_in_seconds", 300 }, { "open", "/tasks/" + taskId } };
    case NoticeKind::rejection:
        return { { "event_id", identifier }, { "task_id", taskId }, { "task_title", "Games" },
            { "closing_session_id", "session-" + number }, { "reason", "coins_depleted" },
            { "kind", "rejected_open" } };
    case NoticeKind::resume:
        return { { "event_id", identifier }, { "task_id", taskId }, { "task_title", "Write the report" },
            { "closing_session_id", "session-" + number } };
    }
    return nullptr;
}

NoticeQueues::NoticeQueues(std::uint64_t launchOrder)
    : m_lastIdentifier(firstIdentifierOfLaunch(launchOrder))
{
}

void NoticeQueues::add(NoticeKind kind, nlohmann::json record, std::optional<double> until)
{
    m_queues[indexOf(kind)].push_back({ std::move(record), until });
}

std::int64_t NoticeQueues::addDefault(NoticeKind kind, std::optional<double> until)
{
    add(kind, defaultRecord(kind, ++m_lastIdentifier), until);
    return m_lastIdentifier;
}

void NoticeQueues::clear(NoticeKind kind) { m_queues[indexOf(kind)].clear(); }

void NoticeQueues::clearAll()
{
    for (auto& queue : m_queues)
        queue.clear();
}

void NoticeQueues::advance(double now)
{
    for (auto& queue : m_queues)
        std::erase_if(queue, [now](const Notice& notice) { return notice.until && now >= *notice.until; });
}

void NoticeQueues::writeTo(nlohmann::json& reply) const
{
    for (const auto& entry : noticeNames) {
        auto& array = reply[entry.replyKey] = nlohmann::json::array();
        for (const auto& notice : m_queues[indexOf(entry.kind)])
            array.push_back(notice.record);
    }
}

}
