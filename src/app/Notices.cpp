#include "app/Notices.h"

#include "filter/OffNoticeTracker.h"
#include "menubar/NoticeConsumer.h"
#include "notify/DeliveryGeneration.h"
#include "notify/FeedbackPresenter.h"
#include "notify/HabitReminderPresenter.h"
#include "notify/LocalAlertPresenter.h"
#include "notify/NoticeClick.h"
#include "notify/NoticeKeys.h"
#include "notify/NotificationHelper.h"
#include "platform/Clock.h"
#include "platform/SystemLog.h"
#include "platform/Workspace.h"
#include "track/AppTracker.h"

#include <utility>

namespace brevanta {

Notices::Notices(Dependencies dependencies)
    : m_dependencies(std::move(dependencies))
    , m_library(m_dependencies.files, m_dependencies.log, m_dependencies.defaults, m_dependencies.resources,
          m_dependencies.systemLanguages)
    , m_client(std::make_unique<SystemNotificationCenterClient>(m_dependencies.center, m_dependencies.mainLoop,
          [&clock = m_dependencies.clock] { return clock.continuousSeconds(); }))
    , m_helper(std::make_unique<NotificationHelper>(*m_client, m_dependencies.log))
    , m_reminders(std::make_unique<HabitReminderPresenter>(m_dependencies.defaults))
    , m_localAlerts(std::make_unique<LocalAlertPresenter>(m_dependencies.defaults))
{
    const CurrentNoticeCopy copy = [this]() -> const NoticeCopy& { return m_library.current(); };
    m_feedback = std::make_unique<FeedbackPresenter>(m_dependencies.defaults, copy,
        [this](const std::string& sessionId) { return m_appTracker->applicationOf(sessionId); });
    m_consumer = std::make_unique<NoticeConsumer>(NoticeConsumer::Dependencies {
        .clock = m_dependencies.clock,
        .defaults = m_dependencies.defaults,
        .reminders = *m_reminders,
        .localAlerts = *m_localAlerts,
        .feedback = *m_feedback,
        .helper = *m_helper,
    });
    const DeliveryGeneration generation(m_dependencies.defaults);
    m_appTracker = std::make_unique<AppTracker>(AppTracker::Dependencies {
        .mainLoop = m_dependencies.mainLoop,
        .clock = m_dependencies.clock,
        .workspace = m_dependencies.workspace,
        .generation = generation,
        .copy = copy,
        .post =
            [this, generation](const AppTracker::Notice& notice) {
                m_helper->post(notice.title, notice.body, notice.identifier, {},
                    { .deadline = std::nullopt, .stillWanted = generation.whileAllowed(notice.generation) });
            },
    });
}

Notices::~Notices() = default;

// The tracker knows a session's application before a notice is to name it.
std::vector<StatusConsumer*> Notices::consumers() { return { m_appTracker.get(), m_consumer.get() }; }

// Whoever is signed in wants to know, and so does whoever is not: it is about the Mac.
void Notices::postSwitchedOff(ProtectiveComponent component)
{
    const auto& copy = m_library.current();
    const bool isService = component == ProtectiveComponent::blockingService;
    m_helper->post(copy.text(isService ? noticeKeys::blockingServiceOffTitle : noticeKeys::contentFilterOffTitle),
        copy.text(isService ? noticeKeys::blockingServiceOffBody : noticeKeys::contentFilterOffBody),
        "pf-switched-off-" + std::string(componentName(component)));
}

void Notices::awaitClicks(std::function<bool(const std::string& url)> isTrusted, std::function<void()> openWindow)
{
    m_client->setClient([this, isTrusted = std::move(isTrusted), openWindow = std::move(openWindow)](
                            const NotificationResponse& response) {
        const auto click = noticeClick(response, isTrusted);
        switch (click.kind) {
        case NoticeClick::Kind::nothing:
            return;
        case NoticeClick::Kind::bringWindowForward:
            return openWindow();
        case NoticeClick::Kind::openUrl:
            // A click is not to be lost: the window is the next best place.
            return m_dependencies.workspace.openUrl(click.url, [openWindow](OpenOutcome outcome) {
                if (outcome == OpenOutcome::refused)
                    openWindow();
            });
        }
    });
}

}
