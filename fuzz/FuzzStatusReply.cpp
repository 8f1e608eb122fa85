#include "daemon/BlockingStatusDecoder.h"

#include <cstdint>

// The service's reply is whatever somebody who owns the socket wants it to be.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static brevanta::BlockingStatusDecoder decoder;
    brevanta::PaddedBuffer reply;
    reply.assign({ reinterpret_cast<const char*>(data), size });
    const auto status = decoder.decode(reply);
    // Every list entry must still be readable once the buffer is gone.
    reply.assign("");
    std::size_t bytes = 0;
    if (status) {
        for (const auto entry : (*status)->blockedDomains)
            bytes += entry.size();
    }
    return bytes == SIZE_MAX;
}
