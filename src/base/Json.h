#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace brevanta {

// Small documents that are built or taken apart freely: requests, settings. What is large or arrives with every poll
// is read with JsonReader.h instead.
using Json = nlohmann::json;

// A value that cannot be written as JSON, such as text that is not UTF-8.
struct JsonSerializationError {
    std::string message;

    bool operator==(const JsonSerializationError&) const = default;
};

// Bytes that are not one JSON value and nothing else. The message never quotes the bytes.
struct JsonParseError {
    std::string message;

    bool operator==(const JsonParseError&) const = default;
};

}
