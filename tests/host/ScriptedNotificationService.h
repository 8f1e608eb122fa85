#pragma once

#include "gtk/GObjectPtr.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace brevanta {

// A message bus for one test, with nothing on it.
class TestBus {
public:
    TestBus();
    ~TestBus();
    TestBus(const TestBus&) = delete;
    TestBus& operator=(const TestBus&) = delete;

    [[nodiscard]] std::string address() const { return g_test_dbus_get_bus_address(m_bus.get()); }
    [[nodiscard]] GObjectPtr<GDBusConnection> connect() const;

private:
    GObjectPtr<GTestDBus> m_bus;
};

struct NotifyCall {
    std::string applicationName;
    std::uint32_t replaces { 0 };
    std::string summary;
    std::string body;
    std::string identifierHint;
    std::string desktopEntryHint;
    std::vector<std::string> actions;
    std::string soundFileHint;
    std::string soundNameHint;

    bool operator==(const NotifyCall&) const = default;
};

// org.freedesktop.Notifications on a connection of its own. It takes the name when it is made and leaves the bus with
// its end; calls are recorded and answered at once, unless told otherwise.
class ScriptedNotificationService {
public:
    enum class Answer { number, error, none };

    ScriptedNotificationService(const TestBus& bus, std::vector<const char*> capabilities);
    ~ScriptedNotificationService();
    ScriptedNotificationService(const ScriptedNotificationService&) = delete;
    ScriptedNotificationService& operator=(const ScriptedNotificationService&) = delete;

    // As when the user dismisses it.
    void announceClosed(std::uint32_t number);
    // As when the user clicks it or one of its buttons.
    void announceAction(std::uint32_t number, const char* action);
    // Answers what was left without one, in order.
    void answerHeld();

    Answer answer { Answer::number };
    std::vector<NotifyCall> notifyCalls;
    std::vector<std::uint32_t> closeCalls;
    int capabilityCalls { 0 };

private:
    void handle(const std::string& method, GVariant* arguments, GDBusMethodInvocation* invocation);
    void record(GVariant* arguments);

    GObjectPtr<GDBusConnection> m_connection;
    std::vector<const char*> m_capabilities;
    std::vector<std::function<void()>> m_held;
    std::uint32_t m_lastNumber { 100 };
};

// Serves the default main context until the condition holds; false when it does not within twenty seconds.
[[nodiscard]] bool serveUntil(const std::function<bool()>& condition);

}
