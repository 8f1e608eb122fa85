#pragma once

#include "base/Json.h"
#include "daemon/RemovalSnapshot.h"
#include "install/RemovalScript.h"
#include "install/ServiceProgram.h"

#include <cstdint>
#include <optional>
#include <string>

namespace brevanta {

// How far the removal of the blocking service has come, as far as this client has heard. Records of one run of the
// service count in the order of their `seq`, runs in the order of their launches; what comes late is dropped. A pure
// value.
class RemovalShell {
public:
    enum class Change { none, changed };

    // The service answered a poll; with a record or, when it has none to give, without.
    [[nodiscard]] Change statusArrived(const RemovalStatusField& removal);

    // Whether anybody takes connections where the service does.
    enum class Listener { none, there };

    // The service did not answer. After a commit it is the end of the removal that nobody listens any more and the
    // program has gone. A service that is installed after that has counted nothing yet: its first record is accepted.
    [[nodiscard]] Change statusFailed(Listener listener, ServiceProgram program);

    // The service was installed anew: what was heard of the one before no longer counts.
    [[nodiscard]] Change serviceInstalled();

    // The service is about to go: it is handed nothing new, no sign-in token either.
    [[nodiscard]] bool isFinishing() const;

    // Nobody is there any more who could block.
    [[nodiscard]] bool isRemoved() const { return m_daemonGone && m_sawCommit; }

    // The state's name, with what kept the service from queuing a request: for the log. Empty while nothing is known.
    [[nodiscard]] std::string step() const;

    // The removal that the service has begun, and does not end: it is finishing, half a minute has gone since it should
    // have been done, and the program is there. `wallSeconds`: now, since 1970.
    [[nodiscard]] std::optional<RemovalHandover> overdue(double wallSeconds, ServiceProgram program) const;

    // What the page is told: an object with "schema" 1. `filterRemovable`: whether the page may have the content filter
    // removed.
    [[nodiscard]] Json state(bool filterRemovable) const;

    bool operator==(const RemovalShell&) const = default;

private:
    struct Fence {
        std::string launch;
        std::uint64_t launchOrder { 0 };
        std::uint64_t seq { 0 };
        bool operator==(const Fence&) const = default;
    };

    [[nodiscard]] bool isNews(const RemovalSnapshot& snapshot) const;
    [[nodiscard]] bool isNewestAgain(const RemovalSnapshot& snapshot) const;
    void accept(const RemovalSnapshot& snapshot);
    [[nodiscard]] std::string stateText() const;

    RemovalSnapshot m_snapshot; // The last one accepted.
    bool m_statusAvailable { false }; // The last poll was answered.
    bool m_daemonReplied { false }; // It gave, or stands by, the newest record since it was last found gone.
    bool m_daemonGone { false };
    bool m_sawCommit { false };
    std::optional<Fence> m_fence; // The newest accepted so far.
};

}
