#pragma once

#include "base/Executor.h"
#include "platform/AlertPanel.h"
#include "platform/ApplicationLifecycle.h"
#include "platform/LoginRecords.h"
#include "platform/MainWindow.h"
#include "platform/NotificationCenter.h"
#include "platform/StatusItem.h"
#include "platform/SystemLog.h"
#include "platform/UserDefaults.h"
#include "platform/Workspace.h"

#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace brevanta {

// The smaller fakes: each records what it was told, in order. Answers are posted to the main loop, as the ports ask.

class FakeSystemLog final : public SystemLog {
public:
    void log(std::string_view line) override;
    void writeStandardError(std::string_view line) override;

    std::vector<std::string> lines;
    std::vector<std::string> standardError;

private:
    std::mutex m_mutex;
};

class FakeUserDefaults final : public UserDefaults {
public:
    [[nodiscard]] std::optional<DefaultsValue> get(std::string_view key) const override;
    void set(std::string_view key, const DefaultsValue& value) override;
    void remove(std::string_view key) override;

private:
    std::map<std::string, DefaultsValue, std::less<>> m_values;
};

class FakeStatusItem final : public StatusItem {
public:
    void show(const StatusItemContent& content) override;
    void setChoiceHandler(std::function<void(MenuItemId)> handler) override { m_handler = std::move(handler); }
    [[nodiscard]] StatusItemVisibility visibility() const override { return shownAs; }

    // As the user would: an item that is absent, disabled, hidden or a separator reports nothing.
    void choose(const std::string& title);

    // The title of the item with this tag; nothing when it is hidden or absent.
    [[nodiscard]] std::optional<std::string> visibleTitle(int tag) const;

    StatusItemContent content;
    std::size_t changes { 0 }; // How often `show` brought something new.
    StatusItemVisibility shownAs { StatusItemVisibility::visible };

private:
    std::function<void(MenuItemId)> m_handler;
};

class FakeAlertPanel final : public AlertPanel {
public:
    explicit FakeAlertPanel(Executor& mainLoop)
        : m_mainLoop(mainLoop)
    {
    }

    void present(const Alert& alert, std::function<void(AlertResponse)> onEnd) override;
    void withdraw(const std::string& identifier) override;

    // Ends the oldest alert on screen.
    void answer(AlertResponse response);

    std::vector<Alert> presented;

private:
    Executor& m_mainLoop;
    std::vector<std::pair<Alert, std::function<void(AlertResponse)>>> m_open;
};

class FakeMainWindow final : public MainWindow {
public:
    void showInFront() override;
    void hide() override { m_visible = false; }
    [[nodiscard]] bool isVisible() const override { return m_visible; }

    int timesShown { 0 };

private:
    bool m_visible { false };
};

class FakeWorkspace final : public Workspace {
public:
    explicit FakeWorkspace(Executor& mainLoop)
        : m_mainLoop(mainLoop)
    {
    }

    void openUrl(const std::string& url, std::function<void(OpenOutcome)> onEnd) override;
    void openFolder(const std::string& path, std::function<void(OpenOutcome)> onEnd) override;

    std::vector<std::string> opened;
    OpenOutcome outcome { OpenOutcome::opened };

private:
    Executor& m_mainLoop;
};

class FakeNotificationCenter final : public NotificationCenter {
public:
    explicit FakeNotificationCenter(Executor& mainLoop)
        : m_mainLoop(mainLoop)
    {
    }

    void add(
        const Notification& notification, std::function<void(std::expected<void, NotificationError>)> onEnd) override;
    void removeDelivered(const std::vector<std::string>& identifiers) override;

    std::vector<Notification> added;
    std::vector<std::string> removed;
    std::optional<NotificationError> failure; // What every add ends with.

private:
    Executor& m_mainLoop;
};

class FakeLoginRecords final : public LoginRecords {
public:
    [[nodiscard]] std::optional<double> consoleLoginTime() const override { return loginTime; }

    std::optional<double> loginTime;
};

class FakeApplicationLifecycle final : public ApplicationLifecycle {
public:
    void setActivationPolicy(ActivationPolicy newPolicy) override { policy = newPolicy; }
    void activate() override { ++activations; }
    void terminate() override { ++terminations; }
    void answerTermination(TerminationAnswer answer) override { answers.push_back(answer); }

    std::optional<ActivationPolicy> policy;
    int activations { 0 };
    int terminations { 0 };
    std::vector<TerminationAnswer> answers;
};

}
