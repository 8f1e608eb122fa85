#pragma once

#include "platform/LoginRecords.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace brevanta {

// One session of a user.
struct LoginRecord {
    std::string line; // The device or display of the session: "console", "tty2", ":0".
    double time { 0 }; // Seconds since 1970.

    bool operator==(const LoginRecord&) const = default;
};

// The USER_PROCESS entries of the user-accounting database, in its order; none when it cannot be read: getutxent(3).
// Not thread-safe.
[[nodiscard]] std::vector<LoginRecord> readLoginRecords();

class LoginRecordsPosix final : public LoginRecords {
public:
    using Source = std::function<std::vector<LoginRecord>()>;

    // `isConsoleLine` tells which lines are sessions at the machine itself; their names differ between systems.
    explicit LoginRecordsPosix(
        std::function<bool(std::string_view line)> isConsoleLine, Source source = readLoginRecords);

    [[nodiscard]] std::optional<double> consoleLoginTime() const override;

private:
    std::function<bool(std::string_view)> m_isConsoleLine;
    Source m_source;
};

}
