#pragma once

#include <memory>

namespace brevanta {

class Clock;
class MainLoop;
class SystemLog;
class Timer;
class UserDefaults;
class WebView;

// Switches the web inspector on until the date that the persistent user defaults hold, and off again at that date. Main
// thread only.
class WebInspectorSwitch {
public:
    struct Dependencies {
        WebView& webView;
        UserDefaults& defaults;
        MainLoop& mainLoop;
        Clock& clock;
        SystemLog& log;
    };

    explicit WebInspectorSwitch(Dependencies dependencies);
    ~WebInspectorSwitch();
    WebInspectorSwitch(const WebInspectorSwitch&) = delete;
    WebInspectorSwitch& operator=(const WebInspectorSwitch&) = delete;

    // Reads what is stored, and acts on it. Called again whenever it may have changed or time may have been skipped.
    void evaluate();

    // Holds a date; set with the system's defaults tool.
    static constexpr auto key = "WebInspectorEnabledUntil";

private:
    Dependencies m_dependencies;
    std::unique_ptr<Timer> m_expiryTimer;
};

}
