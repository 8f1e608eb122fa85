#pragma once

#include "bench/Replies.h"
#include "daemon/DaemonClient.h"
#include "daemon/DaemonTransport.h"
#include "daemon/SharedBlockStateWriter.h"
#include "platform/FileStore.h"
#include "platform/MainLoop.h"
#include "platform/SystemLog.h"
#include "platform/WebView.h"
#include "web/BlockingStatusDelivery.h"
#include "web/PageDelivery.h"
#include "web/TrustedOrigins.h"

#include <deque>

namespace brevanta::bench {

// Both a queue and a main loop, whose work runs when it is told to.
class Steps final : public MainLoop {
public:
    void post(std::function<void()> work) override { m_work.push_back(std::move(work)); }
    [[nodiscard]] std::unique_ptr<Timer> startTimer(double, TimerRepeat, std::function<void()>) override { return {}; }
    [[nodiscard]] bool isMainThread() const override { return true; }

    // False when there was nothing to do.
    bool run();

private:
    std::deque<std::function<void()>> m_work;
};

// A trusted page that takes every script and does nothing with it.
class SilentPage final : public WebView {
public:
    void start(const WebViewConfiguration&) override { }
    [[nodiscard]] WebNavigation load(const std::string&, double) override { return {}; }
    [[nodiscard]] WebNavigation reloadFromOrigin() override { return {}; }
    void evaluate(const std::string&) override { }
    [[nodiscard]] std::optional<Url> committedUrl() const override
    {
        return Url { .text = {}, .scheme = "https", .host = "www.example.com" };
    }
    void setInspectable(Inspectable) override { }
    void detach() override { }
};

class SilentLog final : public SystemLog {
public:
    void log(std::string_view) override { }
    void logToCategory(std::string_view, std::string_view) override { }
    void writeStandardError(std::string_view) override { }
};

// Receives whatever reply is set.
class ReplyTransport final : public DaemonTransport {
public:
    explicit ReplyTransport(const std::string*& reply)
        : m_reply(reply)
    {
    }
    [[nodiscard]] std::expected<void, DaemonFailure> exchange(const Json&, PaddedBuffer& reply) override
    {
        receive(*m_reply, reply);
        return {};
    }

private:
    const std::string*& m_reply;
};

// What a poll goes through that may grow with the reply: the service's client, the shared state's writer and the page.
class Client {
public:
    Client(FileStore& files, const std::filesystem::path& folder);

    void tick(const std::string& reply);

    // Of the last tick, on the main thread, without the engine.
    [[nodiscard]] double mainThreadSeconds() const { return m_mainThreadSeconds; }

private:
    const std::string* m_reply { nullptr };
    Steps m_queue;
    Steps m_mainLoop;
    SilentPage m_page;
    SilentLog m_log;
    TrustedOrigins m_origins { { "www.example.com" }, {} };
    PageDelivery m_pageDelivery { m_page, m_origins, m_log };
    DaemonClient m_daemonClient { std::make_unique<ReplyTransport>(m_reply), m_queue, m_mainLoop };
    SharedBlockStateWriter m_writer;
    BlockingStatusDelivery m_delivery { m_queue, m_mainLoop, m_pageDelivery };
    double m_mainThreadSeconds { 0 };
};

}
