#include "notify/FeedbackPresenter.h"

#include "base/Text.h"
#include "notify/AppRejectionReasonCopy.h"
#include "notify/NoticeKeys.h"
#include "notify/SeenIdentifiers.h"

#include <utility>

namespace brevanta {

namespace {

constexpr auto seenKey = "macFeedback.seenEventIds";

}

FeedbackPresenter::FeedbackPresenter(
    UserDefaults& defaults, CurrentNoticeCopy copy, ApplicationOfSession applicationOfSession)
    : m_defaults(defaults)
    , m_generation(defaults)
    , m_copy(std::move(copy))
    , m_applicationOfSession(std::move(applicationOfSession))
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
    const auto app = applicationOf(rejection.closingSessionId);
    const auto task = rejection.taskTitle.value_or("");
    return { .identifier = "app-rejected-" + rejection.eventId,
        .title = app ? copy.text(AppRejectionReasonCopy::titleKeyWithApp(rejection.kind), { { "app", *app } })
                     : copy.text(AppRejectionReasonCopy::titleKey(rejection.kind)),
        .body = copy.text(AppRejectionReasonCopy::bodyKey(rejection), { { "task", task } }),
        .generation = generation };
}

FeedbackPresenter::Notification FeedbackPresenter::resumed(
    const PendingTaskResume& resume, std::int64_t generation) const
{
    const auto& copy = m_copy();
    const auto task = resume.taskTitle.value_or("");
    const auto app = applicationOf(resume.closingSessionId);
    const auto bodyWithoutTask = [&] {
        return app ? copy.text(noticeKeys::taskResumedBodyWithApp, { { "app", *app } })
                   : copy.text(noticeKeys::taskResumedBody);
    };
    return { .identifier = "task-resumed-" + resume.eventId,
        .title = copy.text(noticeKeys::taskResumedTitle),
        .body
        = isBlank(task) ? bodyWithoutTask() : copy.text(noticeKeys::taskResumedBodyWithTask, { { "task", task } }),
        .generation = generation };
}

std::optional<std::string> FeedbackPresenter::applicationOf(const std::optional<std::string>& sessionId) const
{
    auto name = sessionId && m_applicationOfSession ? m_applicationOfSession(*sessionId) : std::nullopt;
    return name && !isBlank(*name) ? std::move(name) : std::nullopt;
}

}
