#pragma once

#include "daemon/StatusConsumer.h"
#include "notify/DeliveryGeneration.h"
#include "notify/SystemNotificationCenterClient.h"

#include <cstdint>

namespace brevanta {

class Clock;
class FeedbackPresenter;
class HabitReminderPresenter;
class LocalAlertPresenter;
class NotificationHelper;
class UserDefaults;

// Hands each status's notices to their presenters, and posts what they make of them. A reply to a poll that began
// before a sign-out or sign-in shows nothing. Main thread only.
class NoticeConsumer final : public StatusConsumer {
public:
    struct Dependencies {
        Clock& clock;
        UserDefaults& defaults;
        HabitReminderPresenter& reminders;
        LocalAlertPresenter& localAlerts;
        FeedbackPresenter& feedback;
        NotificationHelper& helper;
    };

    explicit NoticeConsumer(Dependencies dependencies);

    void pollBegan() override;
    void consume(const std::shared_ptr<const BlockingStatus>& status) override;
    void serviceFailed(const DaemonFailure&) override { }

private:
    [[nodiscard]] PostLimits whileCurrent(std::int64_t generation) const;

    Dependencies m_dependencies;
    DeliveryGeneration m_deliveryGeneration;
    std::int64_t m_generationOfPoll;
};

}
