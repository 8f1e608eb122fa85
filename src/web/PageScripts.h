#pragma once

#include "base/Json.h"

#include <string>
#include <string_view>

namespace brevanta {

struct BlockingStatus;

// The scripts by which events reach the page: each is one expression that fires an event on `window`. Texts in them are
// written so that nothing in a domain or a title can end the text or the script.
namespace PageScripts {

// Asks the page to forward the user's token.
inline constexpr std::string_view tokenRefresh = "window.dispatchEvent(new CustomEvent('kestrelune_token_refresh'));";
inline constexpr std::string_view requestOnboardingState
    = "window.dispatchEvent(new CustomEvent('kestrelune_request_onboarding_state'));";
inline constexpr std::string_view navigationPending
    = "window.dispatchEvent(new CustomEvent('kestrelune_navigation_pending'));";

// Appends the script, which may have megabytes: made on a queue, into memory that is kept.
void appendBlockingStatus(std::string& out, const BlockingStatus& status);

// Whether the user lets the client notify; the state is one of the words of NotificationAuthorization.
[[nodiscard]] std::string notificationStatus(std::string_view authorization);

// These carry the state as it is given.
[[nodiscard]] std::string deviceSetupState(const Json& state);
[[nodiscard]] std::string removalState(const Json& state);
[[nodiscard]] std::string updaterState(const Json& state);

// Run at the start of each document, before the page's own scripts: who the page is shown by.
[[nodiscard]] std::string documentStart(
    std::string_view deviceId, std::string_view deviceName, std::string_view version);

// An application that the user picked; `icon` is a data URL. Bytes that are not UTF-8 are replaced.
[[nodiscard]] std::string appPicked(std::string_view bundleId, std::string_view name, std::string_view icon);

}

}
