#include "service/Service.h"

#include "service/JsonText.h"

#include <utility>

namespace brevanta::service {

static Reply errorReply(const std::string& reason) { return { .text = jsonText({ { "error", reason } }) }; }

static Reply acknowledgement() { return { .text = R"({"ok":true})" }; }

static std::optional<std::string> textAt(const nlohmann::json& object, const char* key)
{
    const auto found = object.find(key);
    if (found == object.end() || !found->is_string())
        return std::nullopt;
    return found->get<std::string>();
}

Service::Service(ServiceIdentity identity)
    : m_state(std::move(identity))
{
}

ReplyPlan Service::answer(const std::string& line)
{
    const auto request = parseJson(line);
    const auto type = request && request->is_object() ? textAt(*request, "type").value_or("") : "";
    m_requests.note(type, line);
    if (!request)
        return planFor(type, errorReply("invalid request: " + request.error().message));
    if (!request->is_object())
        return planFor(type, errorReply("invalid request: not an object"));
    if (const auto scripted = m_scriptedAnswers.find(type); scripted != m_scriptedAnswers.end())
        return planFor(type, { .text = scripted->second });
    return planFor(type, reply(type, *request));
}

ReplyPlan Service::refuseRequest(const std::string& reason)
{
    m_requests.note("", "");
    return planFor("", errorReply(reason));
}

Reply Service::reply(const std::string& type, const nlohmann::json& request)
{
    if (type == "get_status")
        return statusReply(request);
    if (type == "set_auth_token")
        return authTokenReply(request);
    if (type == "force_sync")
        return acknowledgement();
    if (type == "queue_removal")
        return queueRemovalReply(request);
    if (type == "cancel_removal")
        return cancelRemovalReply(request);
    return errorReply("unknown request type");
}

Reply Service::statusReply(const nlohmann::json& request)
{
    std::optional<std::string> filterAnswer;
    if (const auto report = request.find("filter_health"); report != request.end())
        filterAnswer = m_state.filterReports().answer(*report);
    return { .text = m_state.statusReply(filterAnswer), .minimalText = m_state.minimalReply() };
}

Reply Service::authTokenReply(const nlohmann::json& request)
{
    const auto token = textAt(request, "token");
    if (!token || token->empty())
        return errorReply("missing token");
    if (m_state.credential().offer(*token) == Credential::Verdict::refused)
        return errorReply("token rejected");
    return acknowledgement();
}

Reply Service::queueRemovalReply(const nlohmann::json& request)
{
    const auto account = textAt(request, "account");
    if (!account)
        return errorReply("missing account");
    m_state.queueRemoval(*account);
    return removalReply();
}

Reply Service::cancelRemovalReply(const nlohmann::json& request)
{
    const auto account = textAt(request, "account");
    if (!account)
        return errorReply("missing account");
    const auto actionId = request.find("action_id");
    if (actionId == request.end() || !actionId->is_number_integer())
        return errorReply("missing action_id");
    m_state.removal().cancel(actionId->get<std::int64_t>(), *account);
    return removalReply();
}

Reply Service::removalReply()
{
    return { .text = jsonText({ { "ok", true }, { "removal", m_state.removal().record() } }) };
}

bool Service::takeEarlyClose()
{
    if (!m_misbehaviour || m_misbehaviour->mode != Misbehaviour::Mode::closeEarly)
        return false;
    useUpMisbehaviour();
    return true;
}

bool Service::isRefusingConnections() const
{
    return m_misbehaviour && m_misbehaviour->mode == Misbehaviour::Mode::refuse;
}

ReplyPlan Service::planFor(const std::string& type, Reply reply)
{
    if (!m_misbehaviour || (m_misbehaviour->onlyType && *m_misbehaviour->onlyType != type))
        return honestPlan(std::move(reply));
    auto plan = m_misbehaviour->plan(std::move(reply));
    useUpMisbehaviour();
    return plan;
}

void Service::useUpMisbehaviour()
{
    if (m_misbehaviour->remainingTimes && !--*m_misbehaviour->remainingTimes)
        m_misbehaviour.reset();
}

}
