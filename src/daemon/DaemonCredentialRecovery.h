#pragma once

#include <optional>
#include <string>

namespace brevanta {

struct BlockingStatus;

// Decides when the page is asked to hand its sign-in token to the service again: at once when the service has no
// credential, then after 10, 20, 40 ... seconds and at last every 300. A restart of the service, or a credential,
// starts the sequence anew.
class DaemonCredentialRecovery {
public:
    // Of an account that has been deleted none is expected.
    [[nodiscard]] static bool lacksCredential(const BlockingStatus& status);

    // Takes the newest status into account. `now` is in seconds of any clock that does not go backwards.
    [[nodiscard]] bool shouldSignal(const BlockingStatus& status, double now);

    bool operator==(const DaemonCredentialRecovery&) const = default;

private:
    void reset();

    static constexpr double firstInterval = 10;
    static constexpr double longestInterval = 300;

    std::optional<double> m_nextSignalAt;
    double m_interval { firstInterval };
    std::optional<std::string> m_lastBootId;
};

}
