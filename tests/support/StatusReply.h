#pragma once

#include "daemon/BlockingStatusDecoder.h"

#include <nlohmann/json.hpp>
#include <string_view>

namespace brevanta {

using DecodedStatus = std::expected<std::shared_ptr<const BlockingStatus>, DaemonFailure>;

// Decodes the bytes as a status reply.
inline DecodedStatus decodeStatus(std::string_view bytes)
{
    PaddedBuffer reply;
    reply.assign(bytes);
    return BlockingStatusDecoder().decode(reply);
}

// The least that a status needs, and whatever the test adds.
inline Json statusReply(const Json& additions = Json::object())
{
    Json reply { { "should_block", true }, { "energy", 3 } };
    reply.update(additions);
    return reply;
}

inline std::shared_ptr<const BlockingStatus> statusWith(const Json& additions)
{
    return decodeStatus(statusReply(additions).dump()).value();
}

}
