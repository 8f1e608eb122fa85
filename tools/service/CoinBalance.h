#pragma once

namespace brevanta::service {

// The coins: a metered app drains them second by second, an active task earns them by the minute, and they never go
// below nothing. The balance is brought up to `now` before any rate changes, so each rate counts for exactly its own
// time.
class CoinBalance {
public:
    void advance(double now);

    void setEnergy(double energy) { m_energy = energy; }
    void setDrainPerSecond(double drain) { m_drainPerSecond = drain; }
    void setEarnPerMinute(double earn) { m_earnPerMinute = earn; }

    [[nodiscard]] double energy() const { return m_energy; }
    [[nodiscard]] bool isSpent() const { return m_energy <= 0; }

private:
    double m_now = 0;
    double m_energy = 50;
    double m_drainPerSecond = 0;
    double m_earnPerMinute = 0;
};

}
