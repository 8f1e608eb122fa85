#pragma once

#include "notify/NoticeLibrary.h"
#include "platform/Url.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace brevanta {

class AppTracker;
class Clock;
class FeedbackPresenter;
class FileStore;
class HabitReminderPresenter;
class LocalAlertPresenter;
class MainLoop;
class NoticeConsumer;
class NotificationCenter;
class NotificationHelper;
class StatusConsumer;
class SystemLog;
class SystemNotificationCenterClient;
class UserDefaults;
class Workspace;
enum class ProtectiveComponent;

// Everything that leads to notifications, put together: the presenters, their words, and the one path by which all of
// them post. Main thread only.
class Notices {
public:
    struct Dependencies {
        MainLoop& mainLoop;
        Clock& clock;
        SystemLog& log;
        UserDefaults& defaults;
        FileStore& files;
        NotificationCenter& center;
        Workspace& workspace;
        std::filesystem::path resources;
        std::vector<std::string> systemLanguages;
    };

    explicit Notices(Dependencies dependencies);
    ~Notices();
    Notices(const Notices&) = delete;
    Notices& operator=(const Notices&) = delete;

    [[nodiscard]] SystemNotificationCenterClient& client() { return *m_client; }
    [[nodiscard]] NotificationHelper& helper() { return *m_helper; }
    [[nodiscard]] HabitReminderPresenter& reminders() { return *m_reminders; }

    // Who is to be told of each status.
    [[nodiscard]] std::vector<StatusConsumer*> consumers();

    void postSwitchedOff(ProtectiveComponent component);

    // From here on clicks are answered, that which started the application among them.
    void awaitClicks(std::function<bool(const std::string& url)> isTrusted, std::function<void()> openWindow);

private:
    Dependencies m_dependencies;
    NoticeLibrary m_library;
    std::unique_ptr<SystemNotificationCenterClient> m_client;
    std::unique_ptr<NotificationHelper> m_helper;
    std::unique_ptr<HabitReminderPresenter> m_reminders;
    std::unique_ptr<LocalAlertPresenter> m_localAlerts;
    std::unique_ptr<FeedbackPresenter> m_feedback;
    std::unique_ptr<NoticeConsumer> m_consumer;
    std::unique_ptr<AppTracker> m_appTracker;
};

}
