#include "daemon/DaemonClient.h"

#include "daemon/BlockingStatusDecoder.h"
#include "daemon/DaemonTransport.h"
#include "platform/MainLoop.h"

#include <cassert>
#include <deque>
#include <mutex>
#include <nlohmann/json.hpp>

namespace brevanta {

namespace {

using Answer = std::function<void()>; // Tells the caller, on the main thread.
using StatusResult = std::expected<std::shared_ptr<const BlockingStatus>, DaemonFailure>;

std::string describeValue(json::Element value)
{
    const auto text = json::asText(value);
    return text ? std::string(*text) : std::string(simdjson::minify(value));
}

// What a mutating request's reply says: an "error" counts before anything else, then only "ok": true will do.
std::expected<void, DaemonFailure> checkAcknowledgement(json::Object reply)
{
    json::Element error;
    if (reply.at_key("error").get(error) == simdjson::SUCCESS)
        return std::unexpected(DaemonError { DaemonError::Kind::rejected, describeValue(error) });
    const auto ok = json::member(reply, "ok").and_then(json::asBool);
    if (ok != true)
        return std::unexpected(DaemonError { DaemonError::Kind::rejected, "missing ok" });
    return {};
}

DaemonClient::Completion<RemovalSnapshot> withoutRecord(DaemonClient::Completion<void> completion)
{
    return [completion = std::move(completion)](const std::expected<RemovalSnapshot, DaemonFailure>& result) {
        if (result)
            completion({});
        else
            completion(std::unexpected(result.error()));
    };
}

std::expected<json::Object, DaemonFailure> parseObject(json::Parser& parser, const PaddedBuffer& reply)
{
    const auto root = json::parse(parser, reply);
    if (!root)
        return std::unexpected(root.error());
    const auto object = json::asObject(*root);
    if (!object)
        return std::unexpected(DaemonError { DaemonError::Kind::invalidResponse, {} });
    return *object;
}

}

// Lives until the last job on the queue has ended. The members below the jobs belong to the queue alone.
struct DaemonClient::State {
    struct Job {
        std::function<void()> onBegin; // Null when nobody wants to know.
        std::function<Answer(State&)> run;
    };

    std::mutex mutex;
    bool closed { false };
    std::deque<Job> userJobs;
    std::deque<Job> pollJobs;

    std::unique_ptr<DaemonTransport> transport;
    BlockingStatusDecoder decoder;
    json::Parser parser;
    PaddedBuffer reply;
    PaddedBuffer lastStatusReply;
    std::shared_ptr<const BlockingStatus> lastStatus;

    std::optional<Job> takeNext()
    {
        const std::lock_guard lock(mutex);
        auto& jobs = userJobs.empty() ? pollJobs : userJobs;
        if (closed || jobs.empty())
            return std::nullopt;
        auto job = std::move(jobs.front());
        jobs.pop_front();
        return job;
    }

    StatusResult getStatus(const Json& request)
    {
        if (auto sent = transport->exchange(request, reply); !sent)
            return std::unexpected(std::move(sent.error()));
        if (lastStatus && reply.view() == lastStatusReply.view())
            return lastStatus;
        auto status = decoder.decode(reply);
        if (status) {
            lastStatus = *status;
            std::swap(reply, lastStatusReply);
        }
        return status;
    }

    std::expected<RemovalSnapshot, DaemonFailure> mutate(const Json& request)
    {
        if (auto sent = transport->exchange(request, reply); !sent)
            return std::unexpected(std::move(sent.error()));
        const auto object = parseObject(parser, reply);
        if (!object)
            return std::unexpected(object.error());
        if (auto accepted = checkAcknowledgement(*object); !accepted)
            return std::unexpected(std::move(accepted.error()));
        return RemovalStatusField::decode(*object).snapshot.value_or(RemovalSnapshot {});
    }

    std::expected<Json, DaemonFailure> exchange(const Json& request)
    {
        if (auto sent = transport->exchange(request, reply); !sent)
            return std::unexpected(std::move(sent.error()));
        if (const auto object = parseObject(parser, reply); !object)
            return std::unexpected(object.error());
        return Json::parse(reply.view(), nullptr, false);
    }
};

DaemonClient::DaemonClient(std::unique_ptr<DaemonTransport> transport, Executor& queue, MainLoop& mainLoop)
    : m_queue(queue)
    , m_mainLoop(mainLoop)
    , m_state(std::make_shared<State>())
{
    m_state->transport = std::move(transport);
}

DaemonClient::~DaemonClient()
{
    // Jobs are released outside the lock: what they hold may run code of its own.
    std::deque<State::Job> userJobs;
    std::deque<State::Job> pollJobs;
    const std::lock_guard lock(m_state->mutex);
    m_state->closed = true;
    userJobs.swap(m_state->userJobs);
    pollJobs.swap(m_state->pollJobs);
}

void DaemonClient::getStatus(std::optional<Json> filterHealth,
    Completion<std::shared_ptr<const BlockingStatus>> completion, std::function<void()> onBegin)
{
    Json request { { "type", "get_status" } };
    if (filterHealth)
        request["filter_health"] = std::move(*filterHealth);
    submit(
        Urgency::poll,
        [request = std::move(request), completion = std::move(completion)](
            State& state) -> Answer { return [completion, result = state.getStatus(request)] { completion(result); }; },
        std::move(onBegin));
}

void DaemonClient::setAuthToken(const std::string& token, const std::string& deviceId, Completion<void> completion)
{
    Json request { { "type", "set_auth_token" }, { "token", token } };
    if (!deviceId.empty())
        request["device_id"] = deviceId;
    acknowledged(std::move(request), withoutRecord(std::move(completion)));
}

void DaemonClient::forceSync(Completion<void> completion)
{
    acknowledged(Json { { "type", "force_sync" } }, withoutRecord(std::move(completion)));
}

void DaemonClient::requestRemoval(
    const RemovalRequest& request, const std::string& account, Completion<RemovalSnapshot> completion)
{
    Json message { { "account", account } };
    if (const auto* cancel = std::get_if<CancelRemoval>(&request)) {
        message["type"] = "cancel_removal";
        message["action_id"] = cancel->actionId;
    } else {
        message["type"] = "queue_removal";
        message["origin"] = "in_app";
    }
    acknowledged(std::move(message), std::move(completion));
}

void DaemonClient::exchange(Json request, Completion<Json> completion)
{
    submit(Urgency::user, [request = std::move(request), completion = std::move(completion)](State& state) -> Answer {
        return [completion, result = state.exchange(request)] { completion(result); };
    });
}

void DaemonClient::acknowledged(Json request, Completion<RemovalSnapshot> completion)
{
    submit(Urgency::user, [request = std::move(request), completion = std::move(completion)](State& state) -> Answer {
        return [completion, result = state.mutate(request)] { completion(result); };
    });
}

void DaemonClient::submit(
    Urgency urgency, std::function<std::function<void()>(State&)> job, std::function<void()> onBegin)
{
    assert(m_mainLoop.isMainThread());
    {
        const std::lock_guard lock(m_state->mutex);
        auto& jobs = urgency == Urgency::user ? m_state->userJobs : m_state->pollJobs;
        jobs.push_back({ .onBegin = std::move(onBegin), .run = std::move(job) });
    }
    // One turn of the queue for each job, which takes whatever is most urgent by then.
    m_queue.post([state = m_state, &mainLoop = m_mainLoop] {
        const auto next = state->takeNext();
        if (!next)
            return;
        assert(!mainLoop.isMainThread());
        const auto tell = [&](Answer answer) {
            mainLoop.post([weak = std::weak_ptr(state), answer = std::move(answer)] {
                const auto alive = weak.lock();
                if (alive && !alive->closed)
                    answer();
            });
        };
        if (next->onBegin)
            tell(next->onBegin);
        tell(next->run(*state));
    });
}

}
