#include "tour/TourReport.h"

#include <cstdio>

namespace brevanta::tour {

void TourReport::print(const std::string& text)
{
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - m_start;
    std::printf("%6.1f s  %s\n", elapsed.count(), text.c_str());
    std::fflush(stdout);
}

void TourReport::tell(const std::string& text) { print(text); }

void TourReport::sees(bool isSeen, const std::string& text)
{
    ++(isSeen ? m_seenCount : m_missedCount);
    print((isSeen ? "    saw: " : "    did not see: ") + text);
}

void TourReport::finish()
{
    print(m_missedCount ? "The tour did not see " + std::to_string(m_missedCount) + " of "
                + std::to_string(m_missedCount + m_seenCount) + " things."
                        : "The tour saw all " + std::to_string(m_seenCount) + " things that it looked for.");
}

}
