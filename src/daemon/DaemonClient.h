#pragma once

#include "base/Json.h"
#include "daemon/BlockingStatus.h"
#include "daemon/DaemonFailure.h"

#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>

namespace brevanta {

class DaemonTransport;
class Executor;
class MainLoop;

// What a request to remove the blocking service asks for.
struct QueueRemoval { };
struct CancelRemoval {
    std::int64_t actionId { 0 };
};
using RemovalRequest = std::variant<QueueRemoval, CancelRemoval>;

// The one way to the blocking service. Operations are called on the main thread and answer there, after they have
// returned, each exactly once unless the client is destroyed first. Exchanges run one at a time on the service's queue;
// what the user does goes ahead of a status request that has not begun. Nothing is tried twice and nothing is logged.
class DaemonClient {
public:
    template <typename Value> using Completion = std::function<void(std::expected<Value, DaemonFailure>)>;

    DaemonClient(std::unique_ptr<DaemonTransport> transport, Executor& queue, MainLoop& mainLoop);

    // Requests that have not begun are dropped; one that is under way ends on the queue, unheard.
    ~DaemonClient();

    DaemonClient(const DaemonClient&) = delete;
    DaemonClient& operator=(const DaemonClient&) = delete;

    // The status; carries the content filter's health report, a JSON object, when there is one. A reply of the same
    // bytes as the last one decoded gives the same object again. `onBegin` is called on the main thread, before the
    // completion, when the request's turn has come.
    void getStatus(std::optional<Json> filterHealth, Completion<std::shared_ptr<const BlockingStatus>> completion,
        std::function<void()> onBegin = {});

    // Hands the user's sign-in token to the service; an empty device identifier is not sent.
    void setAuthToken(const std::string& token, const std::string& deviceId, Completion<void> completion);

    // Asks the service to synchronise with its back end now.
    void forceSync(Completion<void> completion);

    // Queues or cancels a removal; answers with the service's record, or an empty one when the reply has none.
    void requestRemoval(
        const RemovalRequest& request, const std::string& account, Completion<RemovalSnapshot> completion);

    // Any request, a JSON object; answers with the reply object as it stands, acknowledged or not.
    void exchange(Json request, Completion<Json> completion);

private:
    struct State;
    enum class Urgency { user, poll };

    void submit(Urgency urgency, std::function<std::function<void()>(State&)> job, std::function<void()> onBegin = {});
    void acknowledged(Json request, Completion<RemovalSnapshot> completion);

    Executor& m_queue;
    MainLoop& m_mainLoop;
    std::shared_ptr<State> m_state;
};

}
