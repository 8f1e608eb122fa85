#include "filter/LaunchFilterActivationPolicy.h"

#include "filter/ExtensionRecords.h"
#include <algorithm>

namespace brevanta::LaunchFilterActivationPolicy {

namespace {

bool isOlder(const ExtensionRecord& record, const ExtensionRecord& other)
{
    return std::is_lt(compareVersions(record, other));
}

}

Decision decide(
    const FilterHealth& health, const std::optional<ExtensionRecord>& bundled, LaunchAttempt attempt, double now)
{
    // First of all, since it stays true: the decision does not change back when the records grow old.
    if (attempt == LaunchAttempt::made)
        return Decision::nothingToDo;
    const auto* const fresh = freshRecords(health, now);
    if (!fresh)
        return Decision::undecided;
    const auto& records = fresh->records;
    if (std::ranges::none_of(records, &ExtensionRecord::isEnabled))
        return Decision::nothingToSubmit;
    const auto needsNoReplacement
        = [&](const ExtensionRecord& record) { return isActive(record) && (!bundled || !isOlder(record, *bundled)); };
    if (std::ranges::none_of(records, isActive) || std::ranges::any_of(records, needsNoReplacement))
        return Decision::nothingToDo;
    return Decision::activate;
}

std::string_view describe(Decision decision)
{
    switch (decision) {
    case Decision::activate:
        return "activate (the active extension is older than the bundled one)";
    case Decision::nothingToSubmit:
        return "nothing to submit (no activated extension)";
    case Decision::nothingToDo:
        return "nothing to do (already attempted, or nothing to replace)";
    case Decision::undecided:
        break;
    }
    return "undecided (the extensions are not known)";
}

}
