#pragma once

#include "base/Json.h"

#include <string>
#include <variant>

namespace brevanta {

// What can go wrong between the client and the blocking service.
struct DaemonError {
    enum class Kind {
        rejected, // The service answered a mutating request with an error, or without "ok": true.
        connectionFailed, // No connection: no socket, a path that is too long, or nobody listening.
        sendFailed, // The request could not be sent whole.
        invalidResponse, // The reply is JSON, but no object.
    };

    Kind kind { Kind::connectionFailed };
    std::string reason; // The service's own words, for `rejected` only.

    bool operator==(const DaemonError&) const = default;
};

// A status reply that is an object but no status. `key` is the first key, in the record's order, that spoils it.
struct StatusDecodingError {
    enum class Kind { missing, wrongType };

    Kind kind { Kind::missing };
    std::string key;

    bool operator==(const StatusDecodingError&) const = default;
};

// Every way in which a request fails. The serializer's, parser's and decoder's errors stay what they are.
using DaemonFailure = std::variant<DaemonError, JsonSerializationError, JsonParseError, StatusDecodingError>;

// One line for the log. Holds nothing of a request or a reply but the service's reason for a rejection.
[[nodiscard]] std::string describe(const DaemonFailure& failure);

}
