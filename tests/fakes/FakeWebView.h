#pragma once

#include "fakes/Recorded.h"
#include "platform/WebView.h"

#include <optional>
#include <vector>

namespace brevanta {

// An engine whose navigations go as the test says.
class FakeWebView final : public WebView, public Recorded {
public:
    struct Load {
        std::string url;
        double timeout;
        bool operator==(const Load&) const = default;
    };

    void start(const WebViewConfiguration& newConfiguration) override { configuration.emplace(newConfiguration); }
    [[nodiscard]] WebNavigation load(const std::string& url, double timeoutSeconds) override
    {
        loads.push_back({ url, timeoutSeconds });
        return begin();
    }
    [[nodiscard]] WebNavigation reloadFromOrigin() override
    {
        ++reloads;
        return begin();
    }
    void evaluate(const std::string& script) override
    {
        told(script);
        scripts.push_back(script);
    }
    [[nodiscard]] std::optional<Url> committedUrl() const override { return committed; }
    void setInspectable(Inspectable newInspectable) override { inspectable = newInspectable; }
    void detach() override { isDetached = true; }

    // A navigation that the page begins by itself.
    WebNavigation beginForeign()
    {
        lastNavigation = newNavigation();
        configuration->navigationDelegate.didStartProvisional(lastNavigation);
        return lastNavigation;
    }
    void commit(const Url& url)
    {
        committed = url;
        configuration->navigationDelegate.didCommit(lastNavigation);
    }
    void finish() { configuration->navigationDelegate.didFinish(lastNavigation); }
    void fail(const WebError& error) { configuration->navigationDelegate.didFail(lastNavigation, error); }
    void terminateContentProcess()
    {
        committed.reset();
        configuration->navigationDelegate.contentProcessDidTerminate();
    }

    static WebNavigation newNavigation() { return std::make_shared<const char>('n'); }

    std::optional<WebViewConfiguration> configuration;
    bool beginsNothing { false }; // Loads and reloads answer null.
    bool isDetached { false };
    std::vector<Load> loads;
    int reloads { 0 };
    std::vector<std::string> scripts;
    std::optional<Url> committed;
    std::optional<Inspectable> inspectable;
    WebNavigation lastNavigation;

private:
    WebNavigation begin()
    {
        if (beginsNothing)
            return nullptr;
        lastNavigation = newNavigation();
        return lastNavigation;
    }
};

}
