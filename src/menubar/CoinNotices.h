#pragma once

#include "platform/NotificationCenter.h"

#include <optional>
#include <vector>

namespace brevanta {

struct BlockingStatus;

// Notices for a coin balance that crosses a threshold between two polls.
class CoinNotices {
public:
    // The notices that this status calls for, in the order in which they are to be posted. The first status never calls
    // for any, since there is no balance before it.
    [[nodiscard]] std::vector<Notification> update(const BlockingStatus& status);

private:
    std::optional<double> m_lastEnergy;
};

}
