#include "web/Misbehaviour.h"

#include "service/NumberText.h"

#include <limits>

namespace brevanta::web {

using service::CommandWords;
using service::fail;
using service::parseCount;
using service::ServiceError;

static constexpr std::size_t longestDelay = 600'000;

static std::expected<std::size_t, ServiceError> nextCount(
    CommandWords& words, std::size_t smallest, std::size_t largest)
{
    const auto word = words.next();
    const auto count = word ? parseCount(*word, largest) : std::nullopt;
    if (!count || *count < smallest)
        return fail("");
    return *count;
}

static std::expected<void, ServiceError> parseArgument(Misbehaviour& result, CommandWords& words)
{
    if (result.mode == Misbehaviour::Mode::status) {
        const auto status = nextCount(words, 200, 599);
        if (!status)
            return std::unexpected(status.error());
        result.status = static_cast<unsigned>(*status);
    } else if (result.mode == Misbehaviour::Mode::delay) {
        const auto delay = nextCount(words, 0, longestDelay);
        if (!delay)
            return std::unexpected(delay.error());
        result.delay = std::chrono::milliseconds(*delay);
    } else if (result.mode == Misbehaviour::Mode::redirect) {
        const auto url = words.next();
        if (!url)
            return fail("");
        result.url = *url;
    }
    return {};
}

std::expected<Misbehaviour, ServiceError> Misbehaviour::parse(Mode mode, CommandWords& words)
{
    Misbehaviour result { .mode = mode };
    if (const auto argument = parseArgument(result, words); !argument)
        return std::unexpected(argument.error());
    if (mode != Mode::refuse && words.isNext("times")) {
        (void)words.next();
        const auto times = nextCount(words, 1, std::numeric_limits<std::size_t>::max());
        if (!times)
            return std::unexpected(times.error());
        result.remainingTimes = *times;
    }
    if (!words.isAtEnd())
        return fail("");
    return result;
}

}
