#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace brevanta::bench {

// The best of several rounds, in seconds, of two that are compared with each other: in turns, so that a machine that
// gets slower meanwhile slows both.
struct Pair {
    double work { 0 };
    double floor { 0 };
};
[[nodiscard]] Pair measureBoth(const std::function<void()>& work, const std::function<void()>& floor);

void printHeading();

// One line: the times, their ratio, and what is aimed at; an empty goal for none.
void printRow(const std::string& what, std::size_t entries, const Pair& seconds, const std::string& goal = {});

}
