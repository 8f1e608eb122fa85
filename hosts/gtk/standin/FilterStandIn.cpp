#include "gtk/standin/FilterStandIn.h"

#include "gtk/standin/MemberReader.h"

#include <algorithm>

namespace brevanta {

namespace {

using Json = nlohmann::json;

// "OSSystemExtensionError" and "NEFilterManagerError" of Apple's documentation.
constexpr int extensionUnknownCode = 1;
constexpr int configurationPermissionDeniedCode = 5;
constexpr int configurationInternalErrorCode = 6;

FilterError configurationError(int code) { return { .domain = "NEFilterErrorDomain", .code = code, .message = {} }; }

std::expected<ExtensionRecord, StandInError> decodeCopy(const Json& value)
{
    ExtensionRecord copy;
    MemberReader reader(value);
    reader.read("enabled", copy.isEnabled);
    reader.read("awaitingUserApproval", copy.isAwaitingUserApproval);
    reader.read("uninstalling", copy.isUninstalling);
    reader.read("shortVersion", copy.shortVersion);
    reader.read("buildVersion", copy.buildVersion);
    return reader.endWith(std::move(copy));
}

std::expected<void, StandInError> decodeCopies(const Json& value, std::vector<ExtensionRecord>& copies)
{
    if (!value.is_array())
        return standInError("is no array");
    for (const auto& element : value) {
        auto copy = decodeCopy(element);
        if (!copy)
            return std::unexpected(std::move(copy.error()));
        copies.push_back(*std::move(copy));
    }
    return {};
}

std::expected<void, StandInError> decodeConfiguration(const Json& value, FilterPreferences& configuration)
{
    MemberReader reader(value);
    reader.read("configured", configuration.isConfigured);
    reader.read("enabled", configuration.isEnabled);
    return reader.end();
}

std::expected<void, StandInError> decodeBehaviour(const Json& value, FilterBehaviour& behaviour)
{
    MemberReader reader(value);
    reader.read("requests", requestAnswerNames, behaviour.requests);
    reader.read("failureCode", behaviour.failureCode);
    reader.read("prompt", promptAnswerNames, behaviour.prompt);
    reader.read("preferences", queryAnswerNames, behaviour.preferences);
    reader.read("properties", queryAnswerNames, behaviour.properties);
    return reader.end();
}

Json encodeCopy(const ExtensionRecord& copy)
{
    Json value { { "enabled", copy.isEnabled }, { "awaitingUserApproval", copy.isAwaitingUserApproval },
        { "uninstalling", copy.isUninstalling } };
    if (copy.shortVersion)
        value["shortVersion"] = *copy.shortVersion;
    if (copy.buildVersion)
        value["buildVersion"] = *copy.buildVersion;
    return value;
}

bool isActive(const ExtensionRecord& copy)
{
    return copy.isEnabled && !copy.isAwaitingUserApproval && !copy.isUninstalling;
}

bool isAwaiting(const ExtensionRecord& copy) { return copy.isAwaitingUserApproval && !copy.isUninstalling; }

ExtensionRequestOutcome ended(FilterStandIn standIn, ExtensionRequestEnd end)
{
    return { .standIn = std::move(standIn), .end = std::move(end) };
}

ExtensionRequestOutcome failed(FilterStandIn standIn, int code)
{
    return ended(std::move(standIn), std::unexpected(extensionError(code)));
}

// In the place of whatever copy is not on its way out.
void install(FilterStandIn& standIn, ExtensionRecord copy)
{
    std::erase_if(standIn.copies, [](const auto& other) { return !other.isUninstalling; });
    standIn.copies.push_back(std::move(copy));
}

}

std::expected<FilterStandIn, StandInError> decodeFilterStandIn(std::string_view text)
{
    const auto value = parseStandIn(text);
    if (!value)
        return std::unexpected(value.error());
    FilterStandIn standIn;
    MemberReader reader(*value);
    reader.readWith("copies", [&](const Json& member) { return decodeCopies(member, standIn.copies); });
    reader.readWith(
        "configuration", [&](const Json& member) { return decodeConfiguration(member, standIn.configuration); });
    reader.readWith("behaviour", [&](const Json& member) { return decodeBehaviour(member, standIn.behaviour); });
    return reader.endWith(std::move(standIn));
}

std::string encode(const FilterStandIn& standIn)
{
    const auto& [copies, configuration, behaviour] = standIn;
    auto encodedCopies = Json::array();
    for (const auto& copy : copies)
        encodedCopies.push_back(encodeCopy(copy));
    return standInText({ { "copies", encodedCopies },
        { "configuration", { { "configured", configuration.isConfigured }, { "enabled", configuration.isEnabled } } },
        { "behaviour",
            { { "requests", nameOf(requestAnswerNames, behaviour.requests) }, { "failureCode", behaviour.failureCode },
                { "prompt", nameOf(promptAnswerNames, behaviour.prompt) },
                { "preferences", nameOf(queryAnswerNames, behaviour.preferences) },
                { "properties", nameOf(queryAnswerNames, behaviour.properties) } } } });
}

const ExtensionRecord* copyToReplace(const FilterStandIn& standIn)
{
    if (standIn.behaviour.requests == RequestAnswer::fail)
        return nullptr;
    const auto found = std::ranges::find(standIn.copies, false, &ExtensionRecord::isUninstalling);
    return found != standIn.copies.end() ? &*found : nullptr;
}

ExtensionRequestOutcome activate(FilterStandIn standIn, const ExtensionRecord& bundled)
{
    ExtensionRecord copy { .isEnabled = true,
        .isAwaitingUserApproval = false,
        .isUninstalling = false,
        .shortVersion = bundled.shortVersion,
        .buildVersion = bundled.buildVersion };
    switch (standIn.behaviour.requests) {
    case RequestAnswer::fail: {
        const int code = standIn.behaviour.failureCode;
        return failed(std::move(standIn), code);
    }
    case RequestAnswer::reboot:
        return ended(std::move(standIn), ExtensionRequestResult::willCompleteAfterReboot);
    case RequestAnswer::approval:
        if (std::ranges::none_of(standIn.copies, isActive)) {
            copy.isEnabled = false;
            copy.isAwaitingUserApproval = true;
            install(standIn, std::move(copy));
            return { .standIn = std::move(standIn), .end = std::nullopt };
        }
        [[fallthrough]];
    case RequestAnswer::grant:
        break;
    }
    install(standIn, std::move(copy));
    return ended(std::move(standIn), ExtensionRequestResult::completed);
}

ExtensionRequestOutcome deactivate(FilterStandIn standIn)
{
    if (standIn.behaviour.requests == RequestAnswer::fail) {
        const int code = standIn.behaviour.failureCode;
        return failed(std::move(standIn), code);
    }
    if (standIn.copies.empty())
        return failed(std::move(standIn), FilterSystem::extensionNotFoundCode);
    if (standIn.behaviour.requests == RequestAnswer::reboot) {
        for (auto& copy : standIn.copies)
            copy.isUninstalling = true;
        return ended(std::move(standIn), ExtensionRequestResult::willCompleteAfterReboot);
    }
    standIn.copies.clear();
    return ended(std::move(standIn), ExtensionRequestResult::completed);
}

std::optional<ExtensionRequestEnd> endOfApproval(const FilterStandIn& standIn)
{
    if (std::ranges::any_of(standIn.copies, isActive))
        return ExtensionRequestResult::completed;
    if (std::ranges::any_of(standIn.copies, isAwaiting))
        return std::nullopt;
    return std::unexpected(extensionError(extensionUnknownCode)); // Somebody has taken the copy away.
}

std::expected<FilterPreferences, FilterError> preferencesIn(const FilterStandIn& standIn)
{
    if (standIn.behaviour.preferences == QueryAnswer::fail)
        return std::unexpected(configurationError(configurationInternalErrorCode));
    return standIn.configuration;
}

std::expected<std::vector<ExtensionRecord>, FilterError> propertiesIn(const FilterStandIn& standIn)
{
    if (standIn.behaviour.properties == QueryAnswer::fail)
        return std::unexpected(extensionError(extensionUnknownCode));
    return standIn.copies;
}

std::expected<FilterStandIn, FilterError> withConfiguration(FilterStandIn standIn)
{
    const auto before = preferencesIn(standIn);
    if (!before)
        return std::unexpected(before.error());
    // The system asks the user the first time only.
    if (!before->isConfigured && standIn.behaviour.prompt == PromptAnswer::refuse)
        return std::unexpected(configurationError(configurationPermissionDeniedCode));
    standIn.configuration = { .isConfigured = true, .isEnabled = true };
    return standIn;
}

std::expected<FilterStandIn, FilterError> withoutConfiguration(FilterStandIn standIn)
{
    if (const auto before = preferencesIn(standIn); !before)
        return std::unexpected(before.error());
    standIn.configuration = {};
    return standIn;
}

FilterError extensionError(int code)
{
    return { .domain = "OSSystemExtensionErrorDomain", .code = code, .message = {} };
}

FilterError asFilterError(const StandInError& error)
{
    return { .domain = "BrevantaStandInErrorDomain", .code = 1, .message = error.message };
}

}
