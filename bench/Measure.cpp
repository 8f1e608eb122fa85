#include "bench/Measure.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace brevanta::bench {

namespace {

constexpr int rounds = 25;
constexpr double forever = 1e9;

double secondsOf(const std::function<void()>& work)
{
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

}

Pair measureBoth(const std::function<void()>& work, const std::function<void()>& floor)
{
    Pair best { .work = forever, .floor = forever };
    for (int round = 0; round < rounds; ++round) {
        best.work = std::min(best.work, secondsOf(work));
        best.floor = std::min(best.floor, secondsOf(floor));
    }
    return best;
}

void printHeading() { std::printf("%-58s %8s %10s %10s %7s  %s\n", "", "entries", "ms", "floor ms", "ratio", "goal"); }

void printRow(const std::string& what, std::size_t entries, const Pair& seconds, const std::string& goal)
{
    std::printf("%-58s %8zu %10.3f %10.3f %7.3f  %s\n", what.c_str(), entries, seconds.work * 1e3, seconds.floor * 1e3,
        seconds.work / seconds.floor, goal.c_str());
}

}
