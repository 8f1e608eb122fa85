#pragma once

#include "base/Executor.h"
#include "base/LifeToken.h"
#include "fakes/Recorded.h"
#include "platform/AlertPanel.h"
#include "platform/ApplicationLifecycle.h"
#include "platform/LoginRecords.h"
#include "platform/MainWindow.h"
#include "platform/NotificationCenter.h"
#include "platform/OpenPanel.h"
#include "platform/Placeholder.h"
#include "platform/StatusItem.h"
#include "platform/SystemLog.h"
#include "platform/UserDefaults.h"
#include "platform/Workspace.h"

#include <deque>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace brevanta {

// The smaller fakes: each records what it was told, in order. Answers are posted to the main loop, as the ports ask.

class FakeSystemLog final : public SystemLog, public Recorded {
public:
    void log(std::string_view line) override;
    void logToCategory(std::string_view category, std::string_view line) override;
    void writeStandardError(std::string_view line) override;

    std::vector<std::string> lines;
    std::vector<std::string> categorized; // "category: line".
    std::vector<std::string> standardError;

private:
    std::mutex m_mutex;
};

class FakeUserDefaults final : public UserDefaults {
public:
    [[nodiscard]] std::optional<DefaultsValue> get(std::string_view key) const override;
    void set(std::string_view key, const DefaultsValue& value) override;
    [[nodiscard]] StoredDefault persistent(std::string_view key) const override;
    void remove(std::string_view key) override;

    // As another process would store something of a shape that the port has no form for.
    void storeUnknownShape(const std::string& key) { m_unknown.insert(key); }

private:
    std::set<std::string, std::less<>> m_unknown;
    std::map<std::string, DefaultsValue, std::less<>> m_values;
};

class FakeStatusItem final : public StatusItem, public Recorded {
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

    [[nodiscard]] std::size_t onScreen() const { return m_open.size(); }

    std::vector<Alert> presented;

private:
    struct Open {
        std::string identifier;
        std::function<void(AlertResponse)> onEnd;
        bool isLeaving { false }; // It counts as on screen until its end has been told.
    };

    void end(const std::string& identifier, AlertResponse response);

    Executor& m_mainLoop;
    std::vector<Open> m_open;
};

class FakeMainWindow final : public MainWindow, public Recorded {
public:
    void build(const MainWindowLayout& layout) override;
    void showInFront() override;
    void hide() override { m_visible = false; }
    [[nodiscard]] bool isVisible() const override { return m_visible; }

    std::optional<MainWindowLayout> built;
    int timesShown { 0 };

private:
    bool m_visible { false };
};

class FakePlaceholder final : public Placeholder {
public:
    void show(const PlaceholderContent& newContent) override;
    void hide() override { isShown = false; }
    void setButtonHandler(std::function<void()> handler) override { m_handler = std::move(handler); }

    // As the user would: nothing happens while there is no button to be seen.
    void pressButton();

    bool isShown { true };
    PlaceholderContent content;

private:
    std::function<void()> m_handler;
};

class FakeOpenPanel final : public OpenPanel {
public:
    explicit FakeOpenPanel(Executor& mainLoop)
        : m_mainLoop(mainLoop)
    {
    }

    void present(const OpenPanelRequest& request, std::function<void(std::vector<std::string>)> onEnd) override;

    // Ends the oldest panel on screen; no path is a cancel.
    void choose(const std::vector<std::string>& paths);

    std::vector<OpenPanelRequest> presented;

private:
    Executor& m_mainLoop;
    std::deque<std::function<void(std::vector<std::string>)>> m_open;
};

class FakeWorkspace final : public Workspace {
public:
    explicit FakeWorkspace(Executor& mainLoop)
        : m_mainLoop(mainLoop)
    {
    }

    void openUrl(const std::string& url, std::function<void(OpenOutcome)> onEnd) override;
    void openFolder(const std::string& path, std::function<void(OpenOutcome)> onEnd) override;
    [[nodiscard]] std::optional<ApplicationFacts> applicationAt(const std::string& path) const override;
    [[nodiscard]] std::vector<std::uint8_t> iconPng(const std::string& path, int pixels) const override;
    void setApplicationHandler(std::function<void(ApplicationChange, const RunningApplication&)> handler) override;
    [[nodiscard]] std::vector<RunningApplication> runningApplications() const override { return m_running; }
    [[nodiscard]] std::optional<std::string> displayNameOf(const std::string& bundleIdentifier) const override;

    void launch(const RunningApplication& application);
    void quit(const RunningApplication& application); // As a quit of what does not run: nothing happens.

    std::vector<std::string> opened;
    OpenOutcome outcome { OpenOutcome::opened };
    bool folderNeverOpens { false }; // Whether nothing is told of the end of `openFolder`.
    std::map<std::string, ApplicationFacts> applications; // By path.
    std::vector<std::uint8_t> icon;
    mutable std::vector<int> iconSizes; // What icons were asked for.
    std::map<std::string, std::string> displayNames; // By bundle identifier.

private:
    void tell(ApplicationChange change, const RunningApplication& application);

    Executor& m_mainLoop;
    std::vector<RunningApplication> m_running;
    std::function<void(ApplicationChange, const RunningApplication&)> m_applicationHandler;
    std::optional<LifeToken> m_registration; // Of the handler.
};

class FakeNotificationCenter final : public NotificationCenter, public Recorded {
public:
    explicit FakeNotificationCenter(Executor& mainLoop)
        : m_mainLoop(mainLoop)
    {
    }

    void add(
        const Notification& notification, std::function<void(std::expected<void, NotificationError>)> onEnd) override;
    void getAuthorization(std::function<void(NotificationAuthorization)> onEnd) override;
    void requestAuthorization(std::function<void(NotificationAuthorizationAnswer)> onEnd) override;
    void removeDelivered(const std::vector<std::string>& identifiers) override;
    void setResponseHandler(std::function<void(const NotificationResponse&)> handler) override;

    // As the user would; told like the real ones, also when nobody listens yet.
    void click(const NotificationResponse& response);

    // What was asked while `holdsRequests` is answered as the user decides now.
    void answerHeldRequests(NotificationAuthorization decision);

    bool holdsRequests { false };
    int requests { 0 };
    NotificationAuthorization authorization { NotificationAuthorization::notDetermined };
    NotificationAuthorization answerOfUser { NotificationAuthorization::authorized }; // When first asked.
    std::string reason; // The system's, with each answer to a request.
    std::vector<Notification> added;
    std::vector<std::string> removed;
    std::optional<NotificationError> failure; // What every add ends with.

private:
    void answer(std::function<void(NotificationAuthorizationAnswer)> onEnd);
    void tellResponses();

    Executor& m_mainLoop;
    std::vector<std::function<void(NotificationAuthorizationAnswer)>> m_held;
    std::function<void(const NotificationResponse&)> m_responseHandler;
    std::vector<NotificationResponse> m_responses; // That nobody was told of yet.
};

class FakeLoginRecords final : public LoginRecords {
public:
    [[nodiscard]] std::optional<double> consoleLoginTime() const override { return loginTime; }

    std::optional<double> loginTime;
};

class FakeApplicationLifecycle final : public ApplicationLifecycle, public Recorded {
public:
    void setActivationPolicy(ActivationPolicy newPolicy) override
    {
        told("activation policy");
        policy = newPolicy;
    }
    void activate() override { ++activations; }
    void terminate() override { ++terminations; }
    void answerTermination(TerminationAnswer answer) override { answers.push_back(answer); }

    std::optional<ActivationPolicy> policy;
    int activations { 0 };
    int terminations { 0 };
    std::vector<TerminationAnswer> answers;
};

}
