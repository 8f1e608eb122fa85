#pragma once

#include <expected>
#include <optional>
#include <string>
#include <string_view>

namespace brevanta {

struct Url;

// Why a text is no endpoint.
enum class CrashEndpointError {
    noUrl,
    notHttps,
    noHost,
    noPublicKey,
    secretKey, // A key that may not be shipped with an application stands behind the public one.
    noProject,
    furtherParts, // A query or a fragment.
};

// The error in English, for the log: "it is no https URL".
[[nodiscard]] std::string_view describe(CrashEndpointError error);

// The host of an endpoint, "https://KEY@HOST/PROJECT" (https://docs.sentry.io/concepts/key-terms/dsn-explainer/).
// `url` is what the system's parser makes of the text, nothing when it is no URL.
[[nodiscard]] std::expected<std::string, CrashEndpointError> crashEndpointHost(const std::optional<Url>& url);

// The name of the environment that reports carry: `wanted`, or `usual` when that is empty or cannot be the name of one.
// A name has at most 64 characters, none of them a space, a line end or a slash, and is not "None"
// (https://docs.sentry.io/concepts/key-terms/environments/).
[[nodiscard]] std::string crashEnvironment(std::string_view wanted, std::string_view usual);

}
