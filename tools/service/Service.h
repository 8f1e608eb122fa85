#pragma once

#include "service/Misbehaviour.h"
#include "service/RequestLog.h"
#include "service/ServiceState.h"

#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace brevanta::service {

// The stand-in as a whole, without its sockets: requests in, plans for replies out.
class Service {
public:
    explicit Service(ServiceIdentity);

    // Brings the service up to date; seconds since its start.
    void advance(double now) { m_state.advance(now); }

    [[nodiscard]] ReplyPlan answer(const std::string& line);
    // A request that was not even a line: too long, or cut off.
    [[nodiscard]] ReplyPlan refuseRequest(const std::string& reason);

    // Whether the connection that has just come in is to be closed unread; uses up one of the misbehaviour's times.
    [[nodiscard]] bool takeEarlyClose();
    [[nodiscard]] bool isRefusingConnections() const;

    void misbehave(Misbehaviour misbehaviour) { m_misbehaviour = std::move(misbehaviour); }
    void behave() { m_misbehaviour.reset(); }
    void scriptAnswer(const std::string& type, std::string reply) { m_scriptedAnswers[type] = std::move(reply); }
    void dropScriptedAnswer(const std::string& type) { m_scriptedAnswers.erase(type); }

    void quit() { m_isQuitting = true; }
    [[nodiscard]] bool isQuitting() const { return m_isQuitting; }

    ServiceState& state() { return m_state; }
    [[nodiscard]] const RequestLog& requests() const { return m_requests; }

private:
    [[nodiscard]] Reply reply(const std::string& type, const nlohmann::json& request);
    [[nodiscard]] Reply statusReply(const nlohmann::json& request);
    [[nodiscard]] Reply authTokenReply(const nlohmann::json& request);
    [[nodiscard]] Reply queueRemovalReply(const nlohmann::json& request);
    [[nodiscard]] Reply cancelRemovalReply(const nlohmann::json& request);
    [[nodiscard]] Reply removalReply();
    [[nodiscard]] ReplyPlan planFor(const std::string& type, Reply);
    void useUpMisbehaviour();

    ServiceState m_state;
    RequestLog m_requests;
    std::optional<Misbehaviour> m_misbehaviour;
    std::map<std::string, std::string> m_scriptedAnswers;
    bool m_isQuitting = false;
};

}
