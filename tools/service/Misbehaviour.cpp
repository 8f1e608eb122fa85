#include "service/Misbehaviour.h"

#include "service/JsonText.h"
#include "service/NumberText.h"
#include "service/RequestTypes.h"

#include <algorithm>
#include <array>
#include <utility>

namespace brevanta::service {

using Mode = Misbehaviour::Mode;

struct ModeShape {
    std::string_view name;
    Mode mode;
    std::size_t fewestArguments;
    std::size_t mostArguments;
};

static constexpr std::array modeShapes {
    ModeShape { "delay", Mode::delay, 1, 1 },
    ModeShape { "silence", Mode::silence, 0, 0 },
    ModeShape { "half", Mode::half, 0, 0 },
    ModeShape { "half-hang", Mode::halfHang, 0, 0 },
    ModeShape { "segments", Mode::segments, 1, 2 },
    ModeShape { "close", Mode::close, 0, 0 },
    ModeShape { "close-early", Mode::closeEarly, 0, 0 },
    ModeShape { "garbage", Mode::garbage, 0, 0 },
    ModeShape { "array", Mode::array, 0, 0 },
    ModeShape { "wrong-types", Mode::wrongTypes, 0, 0 },
    ModeShape { "ok-and-error", Mode::okAndError, 0, 0 },
    ModeShape { "no-newline", Mode::noNewline, 0, 0 },
    ModeShape { "exact", Mode::exact, 1, 1 },
    ModeShape { "nested", Mode::nested, 1, 1 },
    ModeShape { "refuse", Mode::refuse, 0, 0 },
};

static constexpr std::size_t largestAmount = 64 * 1024 * 1024;
static constexpr char garbage[] = "{\"should_block\": maybe, \xff\xfe\0]\n";
static constexpr double defaultPauseSeconds = 0.005;

// Takes "KEYWORD VALUE" off the end of the words.
static std::optional<std::string> takeTrailing(std::vector<std::string>& words, std::string_view keyword)
{
    if (words.size() < 3 || words[words.size() - 2] != keyword)
        return std::nullopt;
    auto value = std::move(words.back());
    words.resize(words.size() - 2);
    return value;
}

std::expected<Misbehaviour, ServiceError> Misbehaviour::parse(const std::vector<std::string>& allWords)
{
    auto words = allWords;
    const auto times = takeTrailing(words, "times");
    const auto type = takeTrailing(words, "on");
    if (words.empty())
        return fail("misbehave needs a mode");
    const auto shape = std::ranges::find(modeShapes, words.front(), &ModeShape::name);
    if (shape == modeShapes.end())
        return fail("unknown misbehaviour '" + words.front() + "'");
    const auto argumentCount = words.size() - 1;
    if (argumentCount < shape->fewestArguments || argumentCount > shape->mostArguments)
        return fail("wrong number of arguments for '" + words.front() + "'");

    Misbehaviour result { .mode = shape->mode, .onlyType = type };
    if (argumentCount > 0) {
        const auto amount = parseCount(words[1], largestAmount);
        if (!amount || (!*amount && result.mode != Mode::delay))
            return fail("'" + words[1] + "' is not a fitting number for '" + words.front() + "'");
        result.amount = *amount;
    }
    if (result.mode == Mode::segments)
        result.pauseSeconds = defaultPauseSeconds;
    if (argumentCount > 1) {
        const auto milliseconds = parseCount(words[2], largestAmount);
        if (!milliseconds)
            return fail("'" + words[2] + "' is not a number of milliseconds");
        result.pauseSeconds = static_cast<double>(*milliseconds) / 1000;
    }
    if (type && !isRequestType(*type))
        return fail("'" + *type + "' is not a request type");
    if (type && (result.mode == Mode::closeEarly || result.mode == Mode::refuse))
        return fail("'" + words.front() + "' acts before a request is read, so it cannot be for one type");
    if (times) {
        const auto count = parseCount(*times, largestAmount);
        if (!count || !*count || result.mode == Mode::refuse)
            return fail("'times " + *times + "' does not fit '" + words.front() + "'");
        result.remainingTimes = count;
    }
    return result;
}

// The same keys, each with a value of another type than a client expects there.
static std::string withWrongTypes(const std::string& text)
{
    auto reply = parseJson(text).value_or(nlohmann::json::object());
    for (auto& value : reply) {
        if (value.is_string())
            value = 17;
        else if (value.is_number())
            value = "17";
        else if (value.is_boolean())
            value = "true";
        else if (value.is_array())
            value = nlohmann::json::object();
        else
            value = nlohmann::json::array();
    }
    return jsonText(reply);
}

static std::string paddedTo(std::size_t size, Reply reply)
{
    auto text = std::move(reply.text);
    if (text.size() + 1 > size && reply.minimalText)
        text = std::move(*reply.minimalText);
    // White space may follow a JSON value, so the padding changes nothing of the meaning.
    if (text.size() + 1 < size)
        text.append(size - text.size() - 1, ' ');
    return text;
}

ReplyPlan honestPlan(Reply reply)
{
    ReplyPlan plan;
    plan.bytes = std::move(reply.text);
    plan.bytes += '\n';
    return plan;
}

ReplyPlan Misbehaviour::plan(Reply reply) const
{
    const auto half = reply.text.size() / 2;
    switch (mode) {
    case Mode::silence:
        return { .bytes = "", .ending = ReplyPlan::Ending::hang };
    case Mode::half:
        return { .bytes = reply.text.substr(0, half) };
    case Mode::halfHang:
        return { .bytes = reply.text.substr(0, half), .ending = ReplyPlan::Ending::hang };
    case Mode::close:
    case Mode::closeEarly:
    case Mode::refuse:
        return {};
    case Mode::garbage:
        return { .bytes = std::string(garbage, sizeof(garbage) - 1) };
    case Mode::array:
        return honestPlan({ .text = "[1,2,3]" });
    case Mode::wrongTypes:
        return honestPlan({ .text = withWrongTypes(reply.text) });
    case Mode::okAndError:
        return honestPlan({ .text = R"({"ok":true,"error":"x"})" });
    case Mode::noNewline:
        return { .bytes = std::move(reply.text) };
    case Mode::exact:
        return honestPlan({ .text = paddedTo(amount, std::move(reply)) });
    case Mode::nested:
        return honestPlan({ .text = "{\"ok\":" + std::string(amount, '[') + std::string(amount, ']') + '}' });
    case Mode::delay: {
        auto plan = honestPlan(std::move(reply));
        plan.delaySeconds = static_cast<double>(amount) / 1000;
        return plan;
    }
    case Mode::segments: {
        auto plan = honestPlan(std::move(reply));
        plan.segmentBytes = amount;
        plan.pauseSeconds = pauseSeconds;
        return plan;
    }
    }
    return {};
}

}
