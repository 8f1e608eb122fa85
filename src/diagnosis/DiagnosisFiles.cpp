#include "diagnosis/DiagnosisFiles.h"

#include "daemon/SharedBlockState.h"
#include "diagnosis/DiagnosisRun.h"
#include "platform/Clock.h"

#include <nlohmann/json.hpp>

namespace brevanta {

namespace {

constexpr double longestRemoval = 120; // Seconds for which an install waits for the end of one.

Json withoutLease(std::string_view record)
{
    auto json = Json::parse(record, nullptr, false);
    if (json.is_object()) {
        json.erase("leaseBootSessionUUID");
        json.erase("leaseUntilUptimeNs");
    }
    return json;
}

bool says(std::string_view record, const BlockingStatus& status)
{
    std::string expected;
    appendSharedBlockState(expected, sharedBlockState(status));
    return withoutLease(record) == withoutLease(expected);
}

DiagnosisFacts::Preferences::Condition conditionOfPreferences(const DiagnosisPorts& ports)
{
    using Condition = DiagnosisFacts::Preferences::Condition;
    const auto found = ports.pathFacts(ports.preferencesFile);
    if (found.kind == PathKind::nothing)
        return Condition::none;
    if (found.kind == PathKind::unknown || !found.mayRead)
        return Condition::unreadable;
    if (found.kind != PathKind::file)
        return Condition::damaged;
    const auto bytes = ports.files.read(ports.preferencesFile);
    return bytes && !ports.isPreferences(*bytes) ? Condition::damaged : Condition::there;
}

}

std::optional<DiagnosisFacts::SharedState> sharedStateIn(
    const DiagnosisPorts& ports, Flavour flavour, const BlockingStatus* status)
{
    using Condition = DiagnosisFacts::SharedState::Condition;
    const auto container = ports.sharedContainer();
    if (!container)
        return std::nullopt;
    DiagnosisFacts::SharedState state { .file
        = *container / sharedBlockStateFileName(flavour == Flavour::dev ? "dev" : "prod"),
        .condition = Condition::there,
        .folder = ports.folderFacts(*container) };
    const auto found = ports.pathFacts(state.file);
    if (found.kind == PathKind::nothing) {
        state.condition = Condition::missing;
    } else if (found.kind != PathKind::file && found.kind != PathKind::unknown) {
        state.condition = Condition::noFile;
    } else if (!found.mayRead) {
        state.condition = Condition::unreadable;
    } else if (status) {
        // One that is too large to be read here is believed.
        const auto record = ports.files.read(state.file);
        if (record && !says(*record, *status))
            state.condition = Condition::outOfDate;
    }
    return state;
}

DiagnosisFacts::Preferences preferencesIn(const DiagnosisPorts& ports)
{
    return { .file = ports.preferencesFile,
        .condition = conditionOfPreferences(ports),
        .folder = ports.folderFacts(ports.preferencesFile.parent_path()) };
}

bool isMarkerFresh(const DiagnosisPorts& ports, const std::filesystem::path& marker)
{
    const auto stamp = ports.files.stamp(marker);
    if (!stamp)
        return false;
    const double age = ports.clock.wallSeconds() - static_cast<double>(stamp->changedAtNanoseconds) / 1e9;
    return age < longestRemoval;
}

}
