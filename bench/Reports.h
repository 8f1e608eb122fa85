#pragma once

#include <cstddef>

namespace brevanta::bench {

// Each prints its lines for replies with so many blocked domains.
void reportDecoding(std::size_t entries);
void reportWriters(std::size_t entries); // Shared state and page script.
void reportWriteStage(std::size_t entries);
void reportTicks(std::size_t entries);

}
