#include "notify/LocalAlertPresenter.h"

#include "notify/SeenIdentifiers.h"

namespace brevanta {

namespace {

constexpr auto seenKey = "localAlerts.seenAlertIds";

LocalAlertPresenter::Notification notificationOf(const PendingLocalAlert& alert, std::int64_t generation, double now)
{
    LocalAlertPresenter::Notification notification {
        // The prefix chooses the sound.
        .identifier = alert.soundPrefix + "-" + std::to_string(alert.alertId),
        .title = alert.notificationTitle,
        .body = alert.body,
        .generation = generation,
        .deadlineMono = now + alert.expiresInSeconds,
        .userInfo = {},
    };
    if (alert.open)
        notification.userInfo.emplace("open", *alert.open);
    return notification;
}

}

LocalAlertPresenter::LocalAlertPresenter(UserDefaults& defaults)
    : m_defaults(defaults)
{
}

std::vector<LocalAlertPresenter::Notification> LocalAlertPresenter::deliver(
    const std::vector<PendingLocalAlert>& alerts, std::int64_t generation, double now)
{
    const auto fresh = takeDeliverable(m_defaults, seenKey, alerts, &PendingLocalAlert::alertId, generation);
    std::vector<Notification> notifications;
    notifications.reserve(fresh.size());
    for (const auto* const alert : fresh)
        notifications.push_back(notificationOf(*alert, generation, now));
    return notifications;
}

}
