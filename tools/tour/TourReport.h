#pragma once

#include <chrono>
#include <string>

namespace brevanta::tour {

// Tells on standard output what happens, one line each with the time since the start.
class TourReport {
public:
    // What the tour does itself.
    void tell(const std::string& text);

    // What the client did about it, or "did not see: …".
    void sees(bool isSeen, const std::string& text);

    [[nodiscard]] bool sawEverything() const { return m_missedCount == 0; }
    void finish();

private:
    void print(const std::string& text);

    std::chrono::steady_clock::time_point m_start { std::chrono::steady_clock::now() };
    int m_seenCount { 0 };
    int m_missedCount { 0 };
};

}
