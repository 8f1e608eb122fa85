#include "notify/AppRejectionReasonCopy.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace brevanta {

namespace {

// A reason of the record and the word for it in the keys.
constexpr std::array<std::pair<std::string_view, std::string_view>, 7> reasons { {
    { "always_blocked", "alwaysBlocked" },
    { "situation", "situation" },
    { "coins_depleted", "coinsDepleted" },
    { "daily_cap", "dailyCap" },
    { "active_task", "activeTask" },
    { "authorization_unconfirmed", "authorizationUnconfirmed" },
    { "unspecified", "unspecified" },
} };

std::string_view wordFor(std::string_view reason)
{
    const auto found = std::ranges::find(reasons, reason, &std::pair<std::string_view, std::string_view>::first);
    return found != reasons.end() ? found->second : "unspecified";
}

std::string prefixFor(PendingAppRejection::Kind kind)
{
    return kind == PendingAppRejection::Kind::rejectedOpen ? "macApp.notice.rejection.rejectedOpen."
                                                           : "macApp.notice.rejection.sessionEnded.";
}

}

std::string AppRejectionReasonCopy::titleKey(PendingAppRejection::Kind kind) { return prefixFor(kind) + "title"; }

std::string AppRejectionReasonCopy::titleKeyWithApp(PendingAppRejection::Kind kind) { return titleKey(kind) + ".app"; }

std::string AppRejectionReasonCopy::bodyKey(const PendingAppRejection& rejection)
{
    const bool hasTask = rejection.taskTitle && !isBlank(*rejection.taskTitle);
    return prefixFor(rejection.kind) + std::string(wordFor(rejection.reason)) + (hasTask ? ".task" : "");
}

}
