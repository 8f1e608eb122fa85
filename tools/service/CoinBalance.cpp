#include "service/CoinBalance.h"

#include <algorithm>

namespace brevanta::service {

void CoinBalance::advance(double now)
{
    const double elapsed = std::max(0.0, now - m_now);
    m_now = std::max(m_now, now);
    const double change = (m_earnPerMinute / 60 - m_drainPerSecond) * elapsed;
    // A balance that was set below zero on purpose stays there until it is earned back; draining stops at zero.
    if (change < 0)
        m_energy = std::max(std::min(m_energy, 0.0), m_energy + change);
    else
        m_energy += change;
}

}
