#include "daemon/SharedBlockStateWriter.h"

#include "base/Executor.h"
#include "platform/FileStore.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace brevanta {

namespace {

bool isSameRecord(const BlockingStatus& left, const BlockingStatus& right)
{
    const auto a = sharedBlockState(left);
    const auto b = sharedBlockState(right);
    return a.shouldBlock == b.shouldBlock && a.apiBaseUrl == b.apiBaseUrl && a.authToken == b.authToken
        && a.blockReason == b.blockReason && a.leaseBootSessionUUID == b.leaseBootSessionUUID
        && a.leaseUntilUptimeNs == b.leaseUntilUptimeNs && std::ranges::equal(a.blockedDomains, b.blockedDomains)
        && std::ranges::equal(a.blockedIPs, b.blockedIPs) && std::ranges::equal(a.autoTrackDomains, b.autoTrackDomains)
        && std::ranges::equal(a.meteredIPPrefixes, b.meteredIPPrefixes)
        && std::ranges::equal(a.meteredDomains, b.meteredDomains);
}

}

// Shared with the work on the queue, which may outlive the writer.
struct SharedBlockStateWriter::Slot {
    explicit Slot(Dependencies newDependencies)
        : dependencies(std::move(newDependencies))
    {
    }

    // True when the caller has to see to a drain.
    [[nodiscard]] bool put(std::shared_ptr<const BlockingStatus> status)
    {
        const std::lock_guard lock(mutex);
        pending.swap(status); // The state that is superseded is released without the lock.
        return !std::exchange(isScheduled, true);
    }

    std::shared_ptr<const BlockingStatus> take()
    {
        const std::lock_guard lock(mutex);
        if (!pending)
            isScheduled = false;
        return std::exchange(pending, nullptr);
    }

    void drain()
    {
        while (auto status = take())
            write(std::move(status));
    }

    void write(std::shared_ptr<const BlockingStatus> status)
    {
        const auto folder = dependencies.container();
        if (!folder)
            return;
        const auto path = *folder / dependencies.fileName;
        const bool isWritten = written && dependencies.files.stamp(path) == stamp
            && (written == status || isSameRecord(*written, *status));
        if (!isWritten) {
            // Made anew and given back, since most polls write nothing; about as large as the last time.
            std::string bytes;
            bytes.reserve(lastSize + lastSize / 8);
            appendSharedBlockState(bytes, sharedBlockState(*status));
            lastSize = bytes.size();
            written = nullptr;
            if (!dependencies.files.createFolder(*folder))
                return;
            const auto replaced = dependencies.files.replace(path, bytes, FilePermissions::ownerOnly);
            if (!replaced)
                return;
            stamp = *replaced;
        }
        // Of equal ones the newer is kept: it is what the rest of the client holds, too.
        written = std::move(status);
    }

    std::mutex mutex;
    std::shared_ptr<const BlockingStatus> pending;
    bool isScheduled { false }; // A drain is queued or runs.

    // The queue's alone from here on.
    const Dependencies dependencies;
    std::shared_ptr<const BlockingStatus> written; // What the file holds; null when that is not known.
    std::optional<FileStamp> stamp; // Of the file then.
    std::size_t lastSize { 0 };
};

SharedBlockStateWriter::SharedBlockStateWriter(Dependencies dependencies)
    : m_slot(std::make_shared<Slot>(std::move(dependencies)))
{
}

SharedBlockStateWriter::~SharedBlockStateWriter() = default;

void SharedBlockStateWriter::submit(std::shared_ptr<const BlockingStatus> status)
{
    if (m_slot->put(std::move(status)))
        m_slot->dependencies.queue.post([slot = m_slot] { slot->drain(); });
}

void SharedBlockStateWriter::clear()
{
    m_isCleared = true;
    submit(std::make_shared<const BlockingStatus>());
}

void SharedBlockStateWriter::consume(const std::shared_ptr<const BlockingStatus>& status)
{
    m_isCleared = false;
    submit(status);
}

void SharedBlockStateWriter::serviceFailed(const DaemonFailure&)
{
    if (m_isCleared)
        clear();
}

}
