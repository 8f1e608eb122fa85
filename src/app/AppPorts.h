#pragma once

#include "app/AppLocationPolicy.h"
#include "filter/SystemSettings.h"
#include "platform/Url.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace brevanta {

class Administrator;
class AlertPanel;
class ApplicationLifecycle;
class Clock;
class CrashReporter;
class Executor;
class FileStore;
class FilterSystem;
class LocalSocketConnector;
class LoginItem;
class LoginRecords;
class MainLoop;
class MainWindow;
class NotificationCenter;
class OpenPanel;
class Placeholder;
class ProgramRunner;
class ServiceManager;
class StatusItem;
class SystemLog;
class Updater;
class UserDefaults;
class WebView;
class Workspace;

// Everything that the client asks of an operating system. The composition root owns the adapters, and keeps them alive
// longer than the delegate.
struct AppPorts {
    MainLoop& mainLoop;
    Executor& daemonQueue; // A serial queue of its own, for exchanges with the blocking service.
    Executor& sharedStateQueue; // Another one, for the file that the content filter reads.
    Executor& pageScriptQueue; // Another one, for scripts that are too large to be made on the main thread.
    Executor& nativeMessagingQueue; // Another one, for the files that the browsers read.
    LocalSocketConnector& localSockets;
    Clock& clock;
    SystemLog& log;
    UserDefaults& defaults;
    ApplicationLifecycle& lifecycle;
    MainWindow& mainWindow;
    StatusItem& statusItem;
    AlertPanel& alerts;
    Workspace& workspace;
    NotificationCenter& notifications;
    LoginRecords& loginRecords;
    WebView& webView;
    Placeholder& placeholder;
    OpenPanel& openPanel;
    ServiceManager& services;
    FilterSystem& filterSystem;
    FileStore& files;
    // The folder that the client shares with the content filter, whether it is there or not; nothing where the system
    // has none for this application. Any thread.
    std::function<std::optional<std::filesystem::path>()> sharedContainer;
    SystemVersion systemVersion;
    std::function<std::string()> newUuid; // A fresh random UUID, RFC 9562 version 4, in its usual form.
    std::string deviceName; // The name that the user gave this computer.
    // As the system reads it; nothing when it is none.
    std::function<std::optional<Url>(const std::string& text)> parseUrl;
    std::filesystem::path resources; // The folder of what the application ships with: sounds, texts.
    std::filesystem::path home; // The user's folder.
    std::vector<std::string> systemLanguages; // Those that the user prefers, as in `chooseNoticeLanguage`.
    std::filesystem::path bundle; // The application's bundle; empty when it cannot be located.
    Administrator& administrator;
    CrashReporter& crashReporter;
    std::string crashEnvironment; // What "SENTRY_ENVIRONMENT" holds; empty when it is not set.
    Updater& updater;
    // The texts of the information dictionary under "SUFeedURL" and "SUPublicEDKey"; nothing where there is no text.
    std::optional<std::string> updaterFeed;
    std::optional<std::string> updaterKey;
    LoginItem& loginItem;
    ProgramRunner& programs;
    std::function<AppLocationPolicy::Context()> location; // Where the application runs from.
    // The names of the browsers here that run in a sandbox of their own. Any thread; null where there are none.
    std::function<std::vector<std::string>()> confinedBrowsers {};
};

}
