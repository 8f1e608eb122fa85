#pragma once

#include "base/PaddedBuffer.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace brevanta::bench {

// A status reply with so many blocked domains of 22 characters. Replies of different variants, from 0 to 9, have no
// domain in common.
[[nodiscard]] std::string replyWith(std::size_t entries, int variant = 0);

// Receives the reply over a socket pair, from a thread that sends it, into a buffer that keeps its memory: as the
// client does.
void receive(std::string_view reply, PaddedBuffer& into);

}
