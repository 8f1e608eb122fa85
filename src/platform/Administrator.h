#pragma once

#include <expected>
#include <functional>
#include <string>

namespace brevanta {

struct AdministratorError {
    enum class Kind {
        cancelled, // The user did not give a password.
        scriptFailed, // It ran, and ended with another status than 0; `message` is what it wrote to standard error.
        unavailable, // This system has no way to ask for an administrator's password.
        notCompiled, // What was to be run could not be read; `message` says why where the system does.
        noResult, // It ran, and nothing is known of its end.
    };

    Kind kind { Kind::scriptFailed };
    std::string message {}; // In English, or as the system words it; for these two only.
    // Of scriptFailed: the script's exit status, or a negative number of the system's own, such as those of
    // "Authorization Services Result Codes"; 0 when neither is known.
    int number { 0 };

    bool operator==(const AdministratorError&) const = default;
};

// Runs shell text with an administrator's rights, for which the system asks the user for a password. Main thread only.
class Administrator {
public:
    virtual ~Administrator() = default;

    // Runs `script` as `/bin/sh -c` would (sh(1)), after the user has given the password to a question that shows
    // `prompt`. Gives what the script wrote to standard output, without a line end behind it. `onEnd` is called exactly
    // once on the main thread, after this call has returned, unless the administrator is destroyed first; a script that
    // has begun runs on by itself then. There is no limit to the time: the user may think about it. One call at a time.
    virtual void run(const std::string& script, const std::string& prompt,
        std::function<void(std::expected<std::string, AdministratorError>)> onEnd)
        = 0;
};

}
