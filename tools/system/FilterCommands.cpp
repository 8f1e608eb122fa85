#include "system/Command.h"

#include <algorithm>
#include <array>

namespace brevanta::system_tool {

namespace {

using Words = std::span<const std::string>;
using Result = StandInStore::Read<FilterStandIn>;

constexpr CommandUsage usages[] = {
    { "fresh", "a machine that has never seen the extension; also in the place of a damaged file" },
    { "awaiting", "one copy, which waits for the user's approval" },
    { "approve", "the user approves the copies that wait" },
    { "on", "one copy, active, and the configuration enabled" },
    { "off", "the configuration is disabled; the copies stay" },
    { "disabled", "the user switches the copies off" },
    { "uninstalling", "the copies are on their way out" },
    { "remove", "the copies are gone; the configuration stays" },
    { "version SHORT [BUILD]", "the version of all copies" },
    { "answer-queries [preferences|properties]", "what the client asks is answered" },
    { "fail-queries [preferences|properties]", "what the client asks fails" },
    { "hang-queries [preferences|properties]", "what the client asks is not answered until that changes" },
    { "requests approval|grant|reboot|fail CODE", "how requests for the extension are answered" },
    { "prompt allow|refuse", "what the user says when the filter is configured the first time" },
};

// A change of what a file holds, which therefore has to be readable.
template <typename Action> FilterChange changing(Action action)
{
    return [action = std::move(action)](const Result& current) -> Result {
        if (!current)
            return current;
        auto next = *current;
        action(next);
        return next;
    };
}

template <typename Action> FilterChange changingCopies(Action action)
{
    return [action = std::move(action)](const Result& current) -> Result {
        if (!current)
            return current;
        if (current->copies.empty())
            return standInError("there is no copy of the extension");
        auto next = *current;
        std::ranges::for_each(next.copies, action);
        return next;
    };
}

ExtensionRecord newCopy(const FilterStandIn& standIn, const std::string& version)
{
    // A copy that is there keeps its version.
    auto copy = standIn.copies.empty() ? ExtensionRecord {} : standIn.copies.back();
    if (standIn.copies.empty())
        copy.shortVersion = copy.buildVersion = version;
    copy.isEnabled = copy.isAwaitingUserApproval = copy.isUninstalling = false;
    return copy;
}

FilterChange approve()
{
    return [](const Result& current) -> Result {
        if (!current)
            return current;
        if (std::ranges::none_of(current->copies, &ExtensionRecord::isAwaitingUserApproval))
            return standInError("no copy of the extension waits for approval");
        auto next = *current;
        for (auto& copy : next.copies) {
            if (std::exchange(copy.isAwaitingUserApproval, false))
                copy.isEnabled = true;
        }
        return next;
    };
}

std::optional<FilterChange> plainChange(std::string_view name, const std::string& version)
{
    if (name == "fresh")
        return [](const Result&) -> Result { return FilterStandIn(); };
    if (name == "awaiting") {
        return changing([version](FilterStandIn& standIn) {
            auto copy = newCopy(standIn, version);
            copy.isAwaitingUserApproval = true;
            standIn.copies = { copy };
        });
    }
    if (name == "approve")
        return approve();
    if (name == "on") {
        return changing([version](FilterStandIn& standIn) {
            auto copy = newCopy(standIn, version);
            copy.isEnabled = true;
            standIn.copies = { copy };
            standIn.configuration = { .isConfigured = true, .isEnabled = true };
        });
    }
    if (name == "off")
        return changing([](FilterStandIn& standIn) { standIn.configuration.isEnabled = false; });
    if (name == "disabled")
        return changingCopies([](ExtensionRecord& copy) { copy.isEnabled = false; });
    if (name == "uninstalling")
        return changingCopies([](ExtensionRecord& copy) { copy.isUninstalling = true; });
    if (name == "remove")
        return changing([](FilterStandIn& standIn) { standIn.copies.clear(); });
    return std::nullopt;
}

std::optional<FilterChange> versionChange(Words arguments)
{
    if (arguments.empty() || arguments.size() > 2)
        return std::nullopt;
    return changingCopies([shortVersion = arguments.front(), buildVersion = arguments.back()](ExtensionRecord& copy) {
        copy.shortVersion = shortVersion;
        copy.buildVersion = buildVersion;
    });
}

std::optional<FilterChange> queryChange(QueryAnswer answer, Words arguments)
{
    const std::string_view which = arguments.size() == 1 ? std::string_view(arguments.front()) : "both";
    if (arguments.size() > 1 || (arguments.size() == 1 && which != "preferences" && which != "properties"))
        return std::nullopt;
    return changing(
        [answer, preferences = which != "properties", properties = which != "preferences"](FilterStandIn& standIn) {
            if (preferences)
                standIn.behaviour.preferences = answer;
            if (properties)
                standIn.behaviour.properties = answer;
        });
}

std::optional<FilterChange> requestChange(Words arguments)
{
    const auto answer = arguments.empty() ? std::nullopt : valueNamed(requestAnswerNames, arguments.front());
    if (!answer || arguments.size() != (answer == RequestAnswer::fail ? 2U : 1U))
        return std::nullopt;
    const auto code = answer == RequestAnswer::fail ? positiveNumber(arguments.back()) : std::optional(0);
    if (!code)
        return std::nullopt;
    return changing([answer = *answer, code = *code](FilterStandIn& standIn) {
        standIn.behaviour.requests = answer;
        if (code > 0)
            standIn.behaviour.failureCode = code;
    });
}

std::optional<FilterChange> promptChange(Words arguments)
{
    const auto answer = arguments.size() == 1 ? valueNamed(promptAnswerNames, arguments.front()) : std::nullopt;
    if (!answer)
        return std::nullopt;
    return changing([answer = *answer](FilterStandIn& standIn) { standIn.behaviour.prompt = answer; });
}

}

std::optional<FilterChange> filterChange(std::span<const std::string> words, const std::string& version)
{
    if (words.empty())
        return std::nullopt;
    const auto& name = words.front();
    const auto arguments = words.subspan(1);
    if (name == "version")
        return versionChange(arguments);
    if (name == "requests")
        return requestChange(arguments);
    if (name == "prompt")
        return promptChange(arguments);
    if (name.ends_with("-queries")) {
        const auto answer
            = valueNamed(queryAnswerNames, name.substr(0, name.size() - std::string_view("-queries").size()));
        return answer ? queryChange(*answer, arguments) : std::nullopt;
    }
    return arguments.empty() ? plainChange(name, version) : std::nullopt;
}

std::span<const CommandUsage> filterUsages() { return usages; }

}
