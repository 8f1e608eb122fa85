#pragma once

#include "daemon/SharedBlockState.h"
#include "daemon/StatusConsumer.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace brevanta {

class Executor;
class FileStore;

// Mirrors each status into the file that the content filter reads. Bursts are coalesced: at most one write is under way
// and one after it, always of the newest state. Main thread only; the queue does all encoding and writing.
class SharedBlockStateWriter final : public StatusConsumer {
public:
    struct Dependencies {
        Executor& queue; // Serial.
        FileStore& files;
        // The folder that the client shares with the filter, made here if it is missing; nothing where the system has
        // none for this application. Called on the queue.
        std::function<std::optional<std::filesystem::path>()> container;
        std::string fileName;
    };

    explicit SharedBlockStateWriter(Dependencies dependencies);
    ~SharedBlockStateWriter() override;

    // Makes this the pending state. A state that is the same object as the one before is written again only when the
    // file is no longer the one that was written.
    void submit(std::shared_ptr<const BlockingStatus> status);

    // The blocking service has been removed: makes a state pending in which nothing is blocked, without token and
    // lists. It stays so until the next status, also if the file cannot be written at first.
    void clear();

    void consume(const std::shared_ptr<const BlockingStatus>& status) override;
    // The last known state stays: the filter goes on by it until its lease ends.
    void serviceFailed(const DaemonFailure&) override;

private:
    struct Slot;

    std::shared_ptr<Slot> m_slot;
    bool m_isCleared { false };
};

}
