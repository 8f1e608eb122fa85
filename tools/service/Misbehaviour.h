#pragma once

#include "service/ServiceError.h"

#include <cstddef>
#include <expected>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brevanta::service {

// How the answer to one request goes out.
struct ReplyPlan {
    enum class Ending { close, hang };

    std::string bytes;
    Ending ending = Ending::close;
    double delaySeconds = 0;
    std::size_t segmentBytes = std::numeric_limits<std::size_t>::max();
    double pauseSeconds = 0;
};

// A reply before it is spoilt. The minimal text is what remains of a reply that has to fit into few bytes.
struct Reply {
    std::string text;
    std::optional<std::string> minimalText {};
};

// One way of treating clients badly, for every request or for the next few, of one type or of all.
struct Misbehaviour {
    enum class Mode {
        delay,
        silence,
        half,
        halfHang,
        segments,
        close,
        closeEarly,
        garbage,
        array,
        wrongTypes,
        okAndError,
        noNewline,
        exact,
        nested,
        refuse,
    };

    Mode mode;
    std::size_t amount = 0;
    double pauseSeconds = 0;
    std::optional<std::string> onlyType {};
    std::optional<std::size_t> remainingTimes {};

    // MODE [ARGUMENTS] [on TYPE] [times N]
    [[nodiscard]] static std::expected<Misbehaviour, ServiceError> parse(const std::vector<std::string>& words);

    [[nodiscard]] ReplyPlan plan(Reply) const;
};

// The reply as it goes out when nothing is to be spoilt.
[[nodiscard]] ReplyPlan honestPlan(Reply);

}
