#pragma once

#include <expected>
#include <functional>
#include <string>
#include <string_view>

namespace brevanta {

// What must not leave the machine is taken out of one text of a report. `key` names the entry of which the text is the
// value, behind the names of those that the entry itself is in, "headers.Cookie"; it is empty for other texts. Both are
// UTF-8; other bytes pass as they are. Any thread, several at once.
using CrashTextScrubber = std::function<std::string(std::string_view key, std::string_view text)>;

struct CrashReporterOptions {
    // Where reports go: an https URL with a public key and a project, "https://KEY@HOST/PROJECT"
    // (https://docs.sentry.io/concepts/key-terms/dsn-explainer/).
    std::string endpoint;
    std::string host; // The endpoint's host, which unlike the key may be shown.
    std::string environment; // "production"
    std::string release; // "com.example.App@1.0.0"
    CrashTextScrubber scrub; // Every text of a report passes it. Kept for as long as the process runs.
};

struct CrashReporterError {
    enum class Kind {
        unavailable, // This system has no crash reporter.
        failed, // It did not start.
    };

    Kind kind { Kind::failed };
    std::string message {}; // In English, for the log; without the endpoint's key.

    bool operator==(const CrashReporterError&) const = default;
};

// An error that the client has noticed, and goes on after.
struct CapturedError {
    std::string kind; // Names the part of the client: "install".
    std::string message; // In English.

    bool operator==(const CapturedError&) const = default;
};

// Watches this process for crashes and sends reports of them, and of errors. It is silent until it is started.
class CrashReporter {
public:
    virtual ~CrashReporter() = default;

    // Main thread; at most once in a process, and before anything that a report is wanted of. May wait a few seconds
    // when the last start of the application crashed at once. After an error nothing is watched and nothing sent.
    [[nodiscard]] virtual std::expected<void, CrashReporterError> start(const CrashReporterOptions& options) = 0;

    // Sends a report of the error, sooner or later. Main thread; only after a start that went well.
    virtual void capture(const CapturedError& error) = 0;
};

}
