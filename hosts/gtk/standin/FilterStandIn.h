#pragma once

#include "gtk/standin/NamedValues.h"
#include "gtk/standin/StandInError.h"
#include "platform/FilterSystem.h"

#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brevanta {

// How a request for the extension is answered: it waits for the user's approval, is granted at once, takes effect after
// a reboot only, or fails.
enum class RequestAnswer { approval, grant, reboot, fail };

// How what is asked is answered. What hangs is answered once that changes.
enum class QueryAnswer { answer, fail, hang };

// What the user says when the system asks whether the first configuration may filter.
enum class PromptAnswer { allow, refuse };

inline constexpr std::array requestAnswerNames { NamedValue { "approval", RequestAnswer::approval },
    NamedValue { "grant", RequestAnswer::grant }, NamedValue { "reboot", RequestAnswer::reboot },
    NamedValue { "fail", RequestAnswer::fail } };
inline constexpr std::array queryAnswerNames { NamedValue { "answer", QueryAnswer::answer },
    NamedValue { "fail", QueryAnswer::fail }, NamedValue { "hang", QueryAnswer::hang } };
inline constexpr std::array promptAnswerNames { NamedValue { "allow", PromptAnswer::allow },
    NamedValue { "refuse", PromptAnswer::refuse } };

struct FilterBehaviour {
    RequestAnswer requests { RequestAnswer::approval };
    int failureCode { 1 }; // Of RequestAnswer::fail, above 0: "OSSystemExtensionError" of Apple's documentation.
    PromptAnswer prompt { PromptAnswer::allow };
    QueryAnswer preferences { QueryAnswer::answer }; // Reading the configuration and changing it.
    QueryAnswer properties { QueryAnswer::answer };

    bool operator==(const FilterBehaviour&) const = default;
};

// What stands for the system's side of the content filter. As it is made, it is a fresh machine.
struct FilterStandIn {
    std::vector<ExtensionRecord> copies;
    FilterPreferences configuration;
    FilterBehaviour behaviour;

    bool operator==(const FilterStandIn&) const = default;
};

// An object of JSON; tools/system/README.md shows it. What is absent is as on a fresh machine.
[[nodiscard]] std::expected<FilterStandIn, StandInError> decodeFilterStandIn(std::string_view text);
[[nodiscard]] std::string encode(const FilterStandIn& standIn);

using ExtensionRequestEnd = std::expected<ExtensionRequestResult, FilterError>;

// What a request makes of the system. Without an end it waits for the user's approval.
struct ExtensionRequestOutcome {
    FilterStandIn standIn;
    std::optional<ExtensionRequestEnd> end;

    bool operator==(const ExtensionRequestOutcome&) const = default;
};

// The copy that an activation would replace, and of which it therefore asks first; null when there is none, or when the
// request fails before that.
[[nodiscard]] const ExtensionRecord* copyToReplace(const FilterStandIn& standIn);

// An enabled copy is replaced without asking the user again.
[[nodiscard]] ExtensionRequestOutcome activate(FilterStandIn standIn, const ExtensionRecord& bundled);

// Asks the user nothing. After a reboot: the copies are uninstalling until something takes them away.
[[nodiscard]] ExtensionRequestOutcome deactivate(FilterStandIn standIn);

// How a request ends that waits for the user's approval; nothing while it goes on waiting.
[[nodiscard]] std::optional<ExtensionRequestEnd> endOfApproval(const FilterStandIn& standIn);

// The answers to what is asked while nothing hangs.
[[nodiscard]] std::expected<FilterPreferences, FilterError> preferencesIn(const FilterStandIn& standIn);
[[nodiscard]] std::expected<std::vector<ExtensionRecord>, FilterError> propertiesIn(const FilterStandIn& standIn);
[[nodiscard]] std::expected<FilterStandIn, FilterError> withConfiguration(FilterStandIn standIn);
[[nodiscard]] std::expected<FilterStandIn, FilterError> withoutConfiguration(FilterStandIn standIn);

// Errors in the system's form. The domain of the last one says that it is none of the system's.
[[nodiscard]] FilterError extensionError(int code);
[[nodiscard]] FilterError asFilterError(const StandInError& error);

}
