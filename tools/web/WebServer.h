#pragma once

#include "service/ServiceError.h"
#include "web/BackEnd.h"
#include "web/EventSource.h"
#include "web/GLibPointers.h"
#include "web/LoopbackPort.h"
#include "web/Misbehaviour.h"
#include "web/PageDriver.h"
#include "web/RequestLog.h"
#include "web/Site.h"

#include <expected>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace brevanta::web {

// Serves the site on its ports, well or badly as it is told. Lives in the default main context.
class WebServer {
public:
    enum class CertificateChoice { own, other };

    struct Options {
        std::vector<LoopbackPort> ports;
        GLibPointer<GTlsCertificate> certificate;
        GLibPointer<GTlsCertificate> otherCertificate {}; // May be none.
        Site site;
        std::unique_ptr<PageDriver> driver {}; // None: there is nothing below /driver/.
        std::optional<BackEnd> backEnd {}; // None: there is nothing at /day.
        // Takes the lines of the request log, if there is to be one.
        std::function<void(const std::string& line)> print {};
    };

    [[nodiscard]] static std::expected<std::unique_ptr<WebServer>, service::ServiceError> start(Options);
    ~WebServer();
    WebServer(const WebServer&) = delete;
    WebServer& operator=(const WebServer&) = delete;

    [[nodiscard]] const std::vector<LoopbackPort>& ports() const { return m_options.ports; }
    [[nodiscard]] RequestLog& log() { return m_log; }
    // Null when there is none.
    [[nodiscard]] PageDriver* driver() { return m_options.driver.get(); }

    // Replaces the misbehaviour before. To refuse closes all connections.
    [[nodiscard]] std::expected<void, service::ServiceError> misbehave(Misbehaviour);
    // Ends the misbehaviour and goes back to the own certificate. What hangs or is delayed stays so.
    [[nodiscard]] std::expected<void, service::ServiceError> behave();
    // Closes all connections, since those that are open have seen the certificate before.
    [[nodiscard]] std::expected<void, service::ServiceError> use(CertificateChoice);

private:
    struct DelayedAnswer {
        GLibPointer<SoupServerMessage> message;
        EventSource timer;
    };

    explicit WebServer(Options);

    // Makes the sockets follow what has been chosen.
    [[nodiscard]] std::expected<void, service::ServiceError> openAnew();
    void handle(SoupServerMessage*);
    void note(SoupServerMessage*, const std::string& path);
    [[nodiscard]] std::optional<Misbehaviour> takeMisbehaviour();
    void misanswer(SoupServerMessage*, const Misbehaviour&);
    void answerLater(SoupServerMessage*, std::chrono::milliseconds);
    void answer(SoupServerMessage*);
    void send(SoupServerMessage*, const SiteFile&);

    Options m_options;
    GLibPointer<SoupServer> m_server;
    RequestLog m_log;
    CertificateChoice m_certificateChoice = CertificateChoice::own;
    std::optional<Misbehaviour> m_misbehaviour;
    std::list<DelayedAnswer> m_delayedAnswers;
};

}
