#include "menubar/CoinNotices.h"

#include "base/Text.h"
#include "daemon/BlockingStatus.h"

namespace brevanta {

namespace {

std::string withThreshold(const char* what, double balance, double threshold)
{
    return what + formatFixed(balance, 0) + " (threshold: " + formatFixed(threshold, 0) + ")";
}

}

std::vector<Notification> CoinNotices::update(const BlockingStatus& status)
{
    const double current = status.energy;
    const double previous = m_lastEnergy.value_or(current);
    m_lastEnergy = current;

    std::vector<Notification> notices;
    if (status.lowLpThreshold) {
        const double low = *status.lowLpThreshold;
        if (status.notifyMacosLowLp == true && current <= low && low < previous)
            notices.push_back({ "low-lp", "Low Coins", withThreshold("Coins dropped to ", current, low) });
        // Running out is told unless the user switched it off; the other two only when switched on.
        if (status.notifyMacosNoLp.value_or(true) && current <= 0 && 0 < previous)
            notices.push_back({ "no-lp", "No Coins", "Coins reached 0 — blocking is now active" });
    }
    if (status.highLpThreshold && *status.highLpThreshold > 0 && status.notifyMacosHighLp == true) {
        const double high = *status.highLpThreshold;
        if (previous < high && high <= current)
            notices.push_back({ "high-lp", "Coins Restored", withThreshold("Coins are back to ", current, high) });
    }
    return notices;
}

}
