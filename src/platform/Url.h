#pragma once

#include <optional>
#include <string>

namespace brevanta {

// A URL as the system's own parser takes it apart, so that no decision rests on a second parser's idea of it. Parts
// that the URL does not have are empty or absent; the letters' case is as written.
struct Url {
    std::string text; // The whole URL.
    std::string scheme;
    std::optional<std::string> user;
    std::optional<std::string> password;
    std::string host;
    std::optional<int> port;
    std::string path;

    bool operator==(const Url&) const = default;
};

}
