#include "notify/HabitReminderPresenter.h"

#include "notify/SeenIdentifiers.h"

namespace brevanta {

namespace {

constexpr auto seenKey = "habitReminders.seenEventIds";

}

HabitReminderPresenter::HabitReminderPresenter(UserDefaults& defaults)
    : m_defaults(defaults)
    , m_generation(defaults)
{
}

bool HabitReminderPresenter::tokenAccepted(const std::string& token, std::int64_t expectedLogoutSequence)
{
    const bool isKnown = token == m_acceptedToken || token == m_heldToken;
    if (isKnown && m_generation.allows(m_generation.current()) && logoutSequence() == expectedLogoutSequence)
        return true;
    if (!signedIn(expectedLogoutSequence))
        return false;
    m_acceptedToken = token;
    m_heldToken.reset();
    return true;
}

std::vector<HabitReminderPresenter::Notification> HabitReminderPresenter::deliver(
    const std::vector<PendingReminder>& reminders, std::int64_t generation)
{
    const auto fresh = takeDeliverable(m_defaults, seenKey, reminders, &PendingReminder::eventId, generation);
    std::vector<Notification> notifications;
    notifications.reserve(fresh.size());
    for (const auto* const reminder : fresh)
        notifications.push_back({ .identifier = "intraday-" + std::to_string(reminder->eventId),
            .title = reminder->notificationTitle,
            .body = reminder->body,
            .generation = generation });
    return notifications;
}

}
