#include "web/BlockingStatusDelivery.h"

#include "daemon/BlockingStatus.h"
#include "platform/MainLoop.h"
#include "web/PageDelivery.h"
#include "web/PageScripts.h"

#include <cassert>
#include <utility>

namespace brevanta {

// Its memory goes to and fro between the threads, so that a large script is neither allocated nor freed with each
// status, and never on the main thread.
struct BlockingStatusDelivery::Script {
    std::shared_ptr<const BlockingStatus> status;
    std::string text;
};

BlockingStatusDelivery::BlockingStatusDelivery(Executor& queue, MainLoop& mainLoop, PageDelivery& delivery)
    : m_queue(queue)
    , m_mainLoop(mainLoop)
    , m_delivery(delivery)
{
}

BlockingStatusDelivery::~BlockingStatusDelivery() = default;

void BlockingStatusDelivery::push(const std::shared_ptr<const BlockingStatus>& status)
{
    assert(m_mainLoop.isMainThread());
    if (m_isMaking)
        m_next = status;
    else if (!m_script || m_script->status != status)
        makeScript(status);
    else
        m_delivery.deliver(m_script->text);
}

void BlockingStatusDelivery::makeScript(const std::shared_ptr<const BlockingStatus>& status)
{
    m_isMaking = true;
    auto made = m_life.guard([this](std::shared_ptr<Script> script) { scriptMade(std::move(script)); });
    m_queue.post([made = std::move(made), status = status, script = std::exchange(m_script, nullptr),
                     &mainLoop = m_mainLoop]() mutable {
        assert(!mainLoop.isMainThread());
        if (!script)
            script = std::make_shared<Script>();
        script->status = std::move(status); // The one before is let go of here, with its lists.
        script->text.clear();
        PageScripts::appendBlockingStatus(script->text, *script->status);
        mainLoop.post([made = std::move(made), script = std::move(script)]() mutable { made(std::move(script)); });
    });
}

void BlockingStatusDelivery::scriptMade(std::shared_ptr<Script> script)
{
    m_isMaking = false;
    m_script = std::move(script);
    m_delivery.deliver(m_script->text);
    if (const auto next = std::exchange(m_next, nullptr); next && next != m_script->status)
        makeScript(next);
}

}
