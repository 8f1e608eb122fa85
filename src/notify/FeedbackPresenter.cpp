#include "notify/FeedbackPresenter.h"

#include "notify/AppRejectionReasonCopy.h"
#include "notify/NoticeKeys.h"
#include "notify/SeenIdentifiers.h"

#include <utility>

namespace brevanta {

namespace {

constexpr auto seenKey = "macFeedback.seenEventIds";

bool isBlank(std::string_view text) { return text.find_first_not_of(" \t\r\n") == std::string_view::npos; }

}

FeedbackPresenter::FeedbackPresenter(UserDefaults& defaults, CurrentNoticeCopy copy)
    : m_defaults(defaults)
    , m_generation(defaults)
    , m_copy(std::move(copy))
{
}

std::vector<FeedbackPresenter::Notification> FeedbackPresenter::deliver(const Batch& batch, std::int64_t generation)
{
    if (batch.rejections.empty() && batch.resumes.empty())
        return {};
    SeenIdentifiers seen(m_defaults.get(seenKey));
    const auto rejections = seen.takeFresh(batch.rejections, &PendingAppRejection::eventId);
    const auto resumes = seen.takeFresh(batch.resumes, &PendingTaskResume::eventId);
    if (rejections.empty() && resumes.empty())
        return {};
    m_defaults.set(seenKey, seen.newest());
    if (!m_generation.allows(generation))
        return {};

    std::vector<Notification> notifications;
    if (batch.notifyMacosAppBlocked.value_or(true)) {
        for (const auto* const rejection : rejections)
            notifications.push_back(rejected(*rejection, generation));
    }
    for (const auto* const resume : resumes)
        notifications.push_back(resumed(*resume, generation));
    return notifications;
}

FeedbackPresenter::Notification FeedbackPresenter::rejected(
    const PendingAppRejection& rejection, std::int64_t generation) const
{
    const auto& copy = m_copy();
    const auto task = rejection.taskTitle.value_or("");
    return { .identifier = "app-rejected-" + std::to_string(rejection.eventId),
        .title = copy.text(AppRejectionReasonCopy::titleKey(rejection.kind)),
        .body = copy.text(AppRejectionReasonCopy::bodyKey(rejection), { { "task", task } }),
        .generation = generation };
}

FeedbackPresenter::Notification FeedbackPresenter::resumed(
    const PendingTaskResume& resume, std::int64_t generation) const
{
    const auto& copy = m_copy();
    const auto bodyKey = isBlank(resume.taskTitle) ? noticeKeys::taskResumedBody : noticeKeys::taskResumedBodyWithTask;
    return { .identifier = "task-resumed-" + std::to_string(resume.eventId),
        .title = copy.text(noticeKeys::taskResumedTitle),
        .body = copy.text(bodyKey, { { "task", resume.taskTitle } }),
        .generation = generation };
}

}
