// What a poll costs, as ratios to a floor that is measured in the same run: absolute times drift between machines.
#include "bench/Measure.h"
#include "bench/Reports.h"

int main()
{
    using namespace brevanta::bench;
    printHeading();
    for (const std::size_t entries : { std::size_t { 1'000 }, std::size_t { 20'000 }, std::size_t { 200'000 } }) {
        reportDecoding(entries);
        reportWriters(entries);
        reportWriteStage(entries);
        reportTicks(entries);
    }
}
