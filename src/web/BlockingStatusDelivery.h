#pragma once

#include "base/LifeToken.h"

#include <memory>
#include <string>

namespace brevanta {

class Executor;
class MainLoop;
class PageDelivery;
struct BlockingStatus;

// Tells the page the blocking status. A status may hold hundreds of thousands of domains, so the script is made on a
// queue; the main thread only hands it to the engine, through the check of every delivery. One script is made at a
// time, and while that goes on only the newest of the statuses that arrive is kept: the page sees them in their order,
// and none after a newer one. Main thread only; may be destroyed while a script is being made.
class BlockingStatusDelivery {
public:
    // The queue is serial. Queue, loop and delivery outlive this.
    BlockingStatusDelivery(Executor& queue, MainLoop& mainLoop, PageDelivery& delivery);
    ~BlockingStatusDelivery();
    BlockingStatusDelivery(const BlockingStatusDelivery&) = delete;
    BlockingStatusDelivery& operator=(const BlockingStatusDelivery&) = delete;

    // Tells the page, every time: it may have begun to listen since. For a status that is the very object that was told
    // last the script is there already.
    void push(const std::shared_ptr<const BlockingStatus>& status);

private:
    struct Script;

    void makeScript(const std::shared_ptr<const BlockingStatus>& status);
    void scriptMade(std::shared_ptr<Script> script);

    Executor& m_queue;
    MainLoop& m_mainLoop;
    PageDelivery& m_delivery;
    std::shared_ptr<Script> m_script; // The last one made; null while it is with the queue.
    std::shared_ptr<const BlockingStatus> m_next; // What arrived while a script was being made.
    bool m_isMaking { false };
    LifeToken m_life;
};

}
