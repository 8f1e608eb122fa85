#pragma once

#include "base/PaddedBuffer.h"
#include "daemon/BlockingStatus.h"
#include "daemon/DaemonFailure.h"

#include <expected>
#include <memory>

namespace brevanta {

// Decodes status replies. Memory for a reply's document is kept and used again once no status needs it, so that a large
// reply every two seconds allocates nothing in the long run. One decoder belongs to one thread at a time; the statuses
// that it gives out may outlive it and be released on any thread.
class BlockingStatusDecoder {
public:
    BlockingStatusDecoder();
    ~BlockingStatusDecoder();

    // Fails with JsonParseError when the bytes are not one JSON value, with DaemonError `invalidResponse` when that
    // value is no object, and with StatusDecodingError when a required key is missing or any key that is read holds a
    // value of the wrong type. Nothing of a reply that fails is kept.
    [[nodiscard]] std::expected<std::shared_ptr<const BlockingStatus>, DaemonFailure> decode(const PaddedBuffer& reply);

private:
    struct Document;
    class DocumentPool;

    std::shared_ptr<DocumentPool> m_pool;
};

}
