#pragma once

#include <optional>

namespace brevanta {

// The user-accounting database, utmpx: getutxent(3).
class LoginRecords {
public:
    virtual ~LoginRecords() = default;

    // When the user of the console session logged in, in seconds since 1970; nothing when no such record can be read.
    // The newest record counts when there are several. Main thread; reads a small local file.
    [[nodiscard]] virtual std::optional<double> consoleLoginTime() const = 0;
};

}
