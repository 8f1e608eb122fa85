#include "gtk/standin/WorkspaceStandIn.h"

#include "gtk/standin/MemberReader.h"

#include <algorithm>
#include <limits>

namespace brevanta {

namespace {

using Json = nlohmann::json;

constexpr int firstProcessId = 1000;

bool isProcess(const WorkspaceStandIn& standIn, int processId)
{
    return std::ranges::find(standIn.running, processId, &RunningApplication::processId) != standIn.running.end();
}

bool isRunning(const WorkspaceStandIn& standIn, const RunningApplication& application)
{
    return std::ranges::find(standIn.running, application) != standIn.running.end();
}

std::expected<RunningApplication, StandInError> decodeApplication(const Json& value)
{
    std::optional<std::string> bundleIdentifier;
    int processId = 0;
    MemberReader reader(value);
    reader.read("bundleIdentifier", bundleIdentifier);
    reader.read("pid", processId);
    if (auto ended = reader.end(); !ended)
        return std::unexpected(std::move(ended.error()));
    if (!bundleIdentifier || bundleIdentifier->empty() || processId == 0)
        return standInError("lacks bundleIdentifier or pid");
    return RunningApplication { .bundleIdentifier = *std::move(bundleIdentifier), .processId = processId };
}

std::expected<void, StandInError> decodeRunning(const Json& value, WorkspaceStandIn& standIn)
{
    if (!value.is_array())
        return standInError("is no array");
    for (const auto& element : value) {
        auto application = decodeApplication(element);
        if (!application)
            return std::unexpected(std::move(application.error()));
        if (isProcess(standIn, application->processId))
            return standInError("has a pid twice");
        standIn.running.push_back(*std::move(application));
    }
    return {};
}

// Above all others, but for the greatest number that there is.
int freeProcessId(const WorkspaceStandIn& standIn)
{
    int processId = firstProcessId;
    for (const auto& application : standIn.running) {
        if (application.processId != std::numeric_limits<int>::max())
            processId = std::max(processId, application.processId + 1);
    }
    return processId;
}

}

std::expected<WorkspaceStandIn, StandInError> decodeWorkspaceStandIn(std::string_view text)
{
    const auto value = parseStandIn(text);
    if (!value)
        return std::unexpected(value.error());
    WorkspaceStandIn standIn;
    MemberReader reader(*value);
    reader.readWith("running", [&](const Json& member) { return decodeRunning(member, standIn); });
    return reader.endWith(std::move(standIn));
}

std::string encode(const WorkspaceStandIn& standIn)
{
    auto running = Json::array();
    for (const auto& application : standIn.running)
        running.push_back({ { "bundleIdentifier", application.bundleIdentifier }, { "pid", application.processId } });
    return standInText({ { "running", running } });
}

std::expected<WorkspaceStandIn, StandInError> withLaunched(
    WorkspaceStandIn standIn, const std::string& bundleIdentifier, std::optional<int> processId)
{
    const int number = processId.value_or(freeProcessId(standIn));
    if (isProcess(standIn, number))
        return standInError("process " + std::to_string(number) + " runs already");
    standIn.running.push_back({ .bundleIdentifier = bundleIdentifier, .processId = number });
    return standIn;
}

std::expected<WorkspaceStandIn, StandInError> withQuit(WorkspaceStandIn standIn, const std::string& bundleIdentifier)
{
    if (!std::erase_if(
            standIn.running, [&](const auto& application) { return application.bundleIdentifier == bundleIdentifier; }))
        return standInError(bundleIdentifier + " does not run");
    return standIn;
}

std::vector<WorkspaceChange> changesBetween(const WorkspaceStandIn& before, const WorkspaceStandIn& after)
{
    std::vector<WorkspaceChange> changes;
    for (const auto& application : before.running) {
        if (!isRunning(after, application))
            changes.push_back({ ApplicationChange::terminated, application });
    }
    for (const auto& application : after.running) {
        if (!isRunning(before, application))
            changes.push_back({ ApplicationChange::launched, application });
    }
    return changes;
}

}
