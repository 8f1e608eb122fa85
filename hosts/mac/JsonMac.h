#pragma once

#import <Foundation/Foundation.h>

#include <optional>
#include <string>

namespace brevanta {

// The value as JSON (RFC 8259, documentation page NSJSONSerialization), a single number or text included. Nothing for
// nil, for what JSON has no form for, and for what would become too deep or too large: a page may post a value that
// contains itself. Main thread.
std::optional<std::string> jsonFromObject(id _Nullable object);

// The value that the text stands for; nil when it is not JSON. Main thread.
id _Nullable objectFromJson(const std::string& json);

}
