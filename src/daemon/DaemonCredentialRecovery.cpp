#include "daemon/DaemonCredentialRecovery.h"

#include "daemon/BlockingStatus.h"

#include <algorithm>

namespace brevanta {

bool DaemonCredentialRecovery::lacksCredential(const BlockingStatus& status)
{
    return status.hasDeviceToken == false && !status.accountDeletedAt;
}

bool DaemonCredentialRecovery::shouldSignal(const BlockingStatus& status, double now)
{
    if (status.daemonBootId) {
        if (m_lastBootId && *m_lastBootId != *status.daemonBootId)
            reset();
        m_lastBootId = status.daemonBootId;
    }

    if (!lacksCredential(status)) {
        reset();
        return false;
    }
    if (m_nextSignalAt && now < *m_nextSignalAt)
        return false;
    m_nextSignalAt = now + m_interval;
    m_interval = std::min(m_interval * 2, longestInterval);
    return true;
}

void DaemonCredentialRecovery::reset()
{
    m_nextSignalAt.reset();
    m_interval = firstInterval;
}

}
