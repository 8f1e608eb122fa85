#include "menubar/NoticeConsumer.h"

#include "daemon/BlockingStatus.h"
#include "notify/FeedbackPresenter.h"
#include "notify/HabitReminderPresenter.h"
#include "notify/LocalAlertPresenter.h"
#include "notify/NotificationHelper.h"
#include "platform/Clock.h"

namespace brevanta {

NoticeConsumer::NoticeConsumer(Dependencies dependencies)
    : m_dependencies(dependencies)
    , m_deliveryGeneration(m_dependencies.defaults)
    , m_generationOfPoll(m_deliveryGeneration.current())
{
}

void NoticeConsumer::pollBegan() { m_generationOfPoll = m_deliveryGeneration.current(); }

void NoticeConsumer::consume(const std::shared_ptr<const BlockingStatus>& status)
{
    m_dependencies.reminders.serviceHolds(status->authToken);
    auto& helper = m_dependencies.helper;
    for (const auto& notice : m_dependencies.reminders.deliver(status->pendingReminders, m_generationOfPoll))
        helper.post(notice.title, notice.body, notice.identifier, {}, whileCurrent(notice.generation));

    const auto now = m_dependencies.clock.continuousSeconds();
    for (auto& notice : m_dependencies.localAlerts.deliver(status->pendingLocalAlerts, m_generationOfPoll, now)) {
        auto limits = whileCurrent(notice.generation);
        limits.deadline = notice.deadlineMono;
        helper.post(notice.title, notice.body, notice.identifier, std::move(notice.userInfo), std::move(limits));
    }

    const FeedbackPresenter::Batch batch { .rejections = status->pendingAppRejections,
        .resumes = status->pendingTaskResumes,
        .notifyMacosAppBlocked = status->notifyMacosAppBlocked };
    for (const auto& notice : m_dependencies.feedback.deliver(batch, m_generationOfPoll))
        helper.post(notice.title, notice.body, notice.identifier, {}, whileCurrent(notice.generation));
}

// The user may sign out while a notice waits for the permission to be shown.
PostLimits NoticeConsumer::whileCurrent(std::int64_t generation) const
{
    return { .deadline = std::nullopt, .stillWanted = m_deliveryGeneration.whileAllowed(generation) };
}

}
