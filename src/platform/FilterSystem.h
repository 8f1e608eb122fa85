#pragma once

#include <expected>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace brevanta {

struct FilterError {
    std::string domain; // As the system names it, for the log: "OSSystemExtensionErrorDomain".
    int code { 0 };
    std::string message; // In the system's words; may be empty.

    bool operator==(const FilterError&) const = default;
};

// The content filter's configuration: NEFilterManager.
struct FilterPreferences {
    bool isConfigured { false }; // There is a configuration at all.
    bool isEnabled { false };

    bool operator==(const FilterPreferences&) const = default;
};

// What the system says of one copy of the filter extension: OSSystemExtensionProperties.
struct ExtensionRecord {
    bool isEnabled { false };
    bool isAwaitingUserApproval { false };
    bool isUninstalling { false };
    std::optional<std::string> shortVersion; // CFBundleShortVersionString
    std::optional<std::string> buildVersion; // CFBundleVersion

    bool operator==(const ExtensionRecord&) const = default;
};

enum class ExtensionReplacement { replace, cancel };
enum class ExtensionRequestResult { completed, willCompleteAfterReboot };

// What a request for the extension asks and tells while it runs: OSSystemExtensionRequestDelegate. All are called on
// the main thread, never from inside the call that made the request.
struct ExtensionRequestObserver {
    // Another copy is there already. At most once.
    std::function<ExtensionReplacement(const ExtensionRecord& existing, const ExtensionRecord& bundled)> replacing;
    // The request goes on once the user has allowed it in the system's settings, which may be never. At most once.
    std::function<void()> needsUserApproval;
    // Exactly once, unless the system is destroyed first or never answers. A request that `replacing` cancelled ends
    // with `requestCanceledCode`.
    std::function<void(std::expected<ExtensionRequestResult, FilterError>)> ended;
};

// The system's side of the content filter. Main thread only; what is asked answers on the main thread, exactly once,
// after the call has returned, unless the system is destroyed first.
class FilterSystem {
public:
    // OSSystemExtensionErrorExtensionNotFound, OSSystemExtensionErrorRequestCanceled and
    // OSSystemExtensionErrorRequestSuperseded, "OSSystemExtensionError" of Apple's documentation.
    static constexpr int extensionNotFoundCode = 4;
    static constexpr int requestCanceledCode = 11;
    static constexpr int requestSupersededCode = 12;

    virtual ~FilterSystem() = default;

    virtual void loadPreferences(std::function<void(std::expected<FilterPreferences, FilterError>)> onEnd) = 0;

    // Writes the filter's configuration, enabled. The system asks the user the first time.
    virtual void enable(std::function<void(std::expected<void, FilterError>)> onEnd) = 0;

    // Takes the configuration away; having none is no error.
    virtual void removeConfiguration(std::function<void(std::expected<void, FilterError>)> onEnd) = 0;

    // All copies of the extension that the system knows; none is an empty list.
    virtual void queryProperties(std::function<void(std::expected<std::vector<ExtensionRecord>, FilterError>)> onEnd)
        = 0;

    virtual void requestActivation(ExtensionRequestObserver observer) = 0;
    virtual void requestDeactivation(ExtensionRequestObserver observer) = 0;

    // Of the extension in this application's bundle; nothing when there is none.
    [[nodiscard]] virtual std::optional<ExtensionRecord> bundledExtension() const = 0;
};

}
