#pragma once

#include "support/PrivateBus.h"

#include <mutex>

namespace brevanta::tour {

struct SeenNotification {
    std::string identifier;
    std::string title;
    std::string body;
};

// Reads along which notifications are handed to the service that shows them.
class NotificationMonitor {
public:
    [[nodiscard]] static std::expected<std::unique_ptr<NotificationMonitor>, std::string> start(
        const functional::PrivateBus&);
    ~NotificationMonitor();
    NotificationMonitor(const NotificationMonitor&) = delete;
    NotificationMonitor& operator=(const NotificationMonitor&) = delete;

    // The newest with this identifier, after waiting for it.
    [[nodiscard]] std::optional<SeenNotification> await(
        const std::string& identifier, functional::Milliseconds within = functional::Milliseconds(10000));
    [[nodiscard]] std::size_t count();

private:
    NotificationMonitor() = default;
    void note(GDBusMessage* message);

    functional::GLibPointer<GDBusConnection> m_connection;
    unsigned m_filter { 0 };
    std::mutex m_mutex; // The bus library calls a filter on a thread of its own.
    std::vector<SeenNotification> m_notifications;
};

}
