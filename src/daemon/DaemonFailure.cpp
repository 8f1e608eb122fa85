#include "daemon/DaemonFailure.h"

namespace brevanta {

namespace {

std::string describeOne(const DaemonError& error)
{
    switch (error.kind) {
    case DaemonError::Kind::rejected:
        return "rejected (" + error.reason + ")";
    case DaemonError::Kind::connectionFailed:
        return "connectionFailed";
    case DaemonError::Kind::sendFailed:
        return "sendFailed";
    case DaemonError::Kind::invalidResponse:
        return "invalidResponse";
    }
    return {};
}

std::string describeOne(const JsonSerializationError& error) { return "request is not JSON: " + error.message; }

std::string describeOne(const JsonParseError& error) { return "reply is not JSON: " + error.message; }

std::string describeOne(const StatusDecodingError& error)
{
    return "reply is no status: \"" + error.key + "\" "
        + (error.kind == StatusDecodingError::Kind::missing ? "is missing" : "is of the wrong type");
}

}

std::string describe(const DaemonFailure& failure)
{
    return std::visit([](const auto& error) { return describeOne(error); }, failure);
}

}
