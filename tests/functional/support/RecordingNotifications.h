#pragma once

#include "support/PrivateBus.h"

namespace brevanta::functional {

struct RecordedNotification {
    std::string identifier; // The client's own name for it, in the hint x-brevanta-identifier.
    std::string title;
    std::string body;
    std::string sound; // The file's name without its folder, or the name in the theme.
    std::uint32_t id { 0 };
    bool isClosed { false };
};

// A notification service that shows nothing and remembers everything. It sounds nothing either.
class RecordingNotifications {
public:
    [[nodiscard]] static std::expected<std::unique_ptr<RecordingNotifications>, std::string> start(
        const PrivateBus&, std::vector<std::string> capabilities = { "actions", "body" });
    ~RecordingNotifications();
    RecordingNotifications(const RecordingNotifications&) = delete;
    RecordingNotifications& operator=(const RecordingNotifications&) = delete;

    [[nodiscard]] const std::vector<RecordedNotification>& all() const { return m_notifications; }
    [[nodiscard]] std::vector<RecordedNotification> identified(const std::string& identifier) const;
    [[nodiscard]] bool await(
        const std::string& identifier, std::size_t count = 1, Milliseconds within = Milliseconds(10000)) const;

    // The user clicks the notification that came last under this name.
    void click(const std::string& identifier);

    // Titles and identifiers, for a test's message.
    [[nodiscard]] std::string describe() const;

private:
    RecordingNotifications(const PrivateBus& bus, std::vector<std::string> capabilities);
    void handle(const std::string& method, GVariant* arguments, GDBusMethodInvocation* invocation);
    std::uint32_t record(GVariant* arguments);
    void close(std::uint32_t id);

    const PrivateBus& m_bus;
    std::vector<std::string> m_capabilities;
    unsigned m_registration { 0 };
    std::uint32_t m_lastId { 0 };
    std::vector<RecordedNotification> m_notifications;
};

}
