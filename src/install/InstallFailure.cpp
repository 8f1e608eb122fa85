#include "install/InstallFailure.h"

#include "base/FailureDetails.h"
#include "base/Text.h"
#include "install/ScriptFragments.h"
#include "platform/Administrator.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace brevanta {

namespace {

constexpr std::string_view unknown
    = "macOS reported a problem that Brevanta does not know. Try again, and restart this Mac if that does not help.";
constexpr std::string_view installAnew = "Install Brevanta anew, and try again.";

constexpr std::string_view busy = "macOS is not done with the previous blocking service yet. Try again in a minute, "
                                  "and restart this Mac if that does not help.";
constexpr std::string_view lost = "macOS has lost track of the blocking service. Restart this Mac, and try again.";
constexpr std::string_view notAllowed
    = "macOS does not allow the blocking service to be changed. Allow Brevanta to run in the background in System "
      "Settings, under General, Login Items; if that is not possible, ask whoever manages this Mac.";
constexpr std::string_view damaged = "This copy of Brevanta is damaged. Install Brevanta anew, and try again.";
constexpr std::string_view full = "There is no room left on this Mac's disk. Free some space, and try again.";
constexpr std::string_view readOnly = "This Mac's disk cannot be written to. Restart this Mac, and try again.";
constexpr std::string_view denied = "The files of the blocking service may not be changed. Ask whoever manages this "
                                    "Mac, and try again.";
constexpr std::string_view wrongPassword = "The administrator's name or password was not right. Try again with those "
                                           "of an administrator of this Mac.";
constexpr std::string_view noQuestion = "macOS could not ask for an administrator's password. Log in at this Mac "
                                        "itself, and try again.";

struct KnownWords {
    std::string_view words; // In lower case.
    std::string_view meaning;
};

// The words are those of strerror(3) and of `launchctl error`, which launchctl(1) writes behind its own number.
constexpr std::array knownWords {
    KnownWords { "bootstrap failed: 5:", busy },
    KnownWords { "operation already in progress", busy },
    KnownWords { "operation now in progress", busy },
    KnownWords { "domain is tearing down", busy },
    KnownWords { "could not find specified", lost },
    KnownWords { "could not find service", lost },
    KnownWords { "operation not permitted", notAllowed },
    KnownWords { "service is disabled", notAllowed },
    KnownWords { "domain does not support specified action", notAllowed },
    KnownWords { "invalid property list", damaged },
    KnownWords { "no space left on device", full },
    KnownWords { "quota exceeded", full },
    KnownWords { "read-only file system", readOnly },
    KnownWords { "permission denied", denied },
};

struct KnownNumber {
    int number;
    std::string_view meaning;
};

// For a system that words its errors in another language, or writes none. The negative ones are the system's own, those
// of "Authorization Services Result Codes"; the others statuses of launchctl, and of lockf(1), which is told to be
// silent: its EX_UNAVAILABLE and EX_CANTCREAT of sysexits(3).
constexpr std::array knownNumbers {
    KnownNumber { -60005, wrongPassword },
    KnownNumber { -60007, noQuestion },
    KnownNumber { 5, busy },
    KnownNumber { 36, busy },
    KnownNumber { 37, busy },
    KnownNumber { 69, denied },
    KnownNumber { 73, denied },
    KnownNumber { 109, damaged },
    KnownNumber { 112, lost },
    KnownNumber { 113, lost },
    KnownNumber { 119, notAllowed },
    KnownNumber { 124, busy },
    KnownNumber { 125, notAllowed },
};

// What the scripts say themselves is meant for the user, and is all there is to say.
std::optional<std::string> scriptsOwnWords(std::string_view output)
{
    for (const std::string& words : { ScriptFragments::startWasRefused(), std::string(ScriptFragments::removalBegan),
             std::string(ScriptFragments::removalIsUnderWay), std::string(ScriptFragments::didNotStop) }) {
        if (output.contains(words))
            return words;
    }
    return std::nullopt;
}

// The last line that says something: what stands before it did not end the script.
std::optional<std::string_view> meaningOfWords(std::string_view output)
{
    const auto text = lowerCased(output);
    std::optional<std::string_view> meaning;
    std::size_t last = 0;
    for (const auto& known : knownWords) {
        const auto at = text.rfind(known.words);
        if (at != std::string::npos && (!meaning || at > last)) {
            meaning = known.meaning;
            last = at;
        }
    }
    return meaning;
}

std::optional<std::string_view> meaningOfNumber(int number)
{
    const auto* const known = std::ranges::find(knownNumbers, number, &KnownNumber::number);
    return known == knownNumbers.end() ? std::nullopt : std::optional(known->meaning);
}

// Empty for an end that has no number.
std::string numberText(int number)
{
    if (number == 0)
        return {};
    return (number < 0 ? "error " : "status ") + std::to_string(number);
}

struct Words {
    std::string text;
    bool isKnown { true };
};

Words wordsForScript(const AdministratorError& error)
{
    if (auto own = scriptsOwnWords(error.message))
        return { .text = *std::move(own) };
    auto meaning = error.number < 0 ? meaningOfNumber(error.number) : std::nullopt;
    if (!meaning)
        meaning = meaningOfWords(error.message);
    if (!meaning)
        meaning = meaningOfNumber(error.number);
    return { .text = std::string(meaning.value_or(unknown)), .isKnown = meaning.has_value() };
}

Words wordsFor(const AdministratorError& error, FlightTask task)
{
    const bool installs = task == FlightTask::install;
    switch (error.kind) {
    case AdministratorError::Kind::unavailable:
        return { .text = "AppleScript is not available on this Mac. Restart this Mac, and try again." };
    case AdministratorError::Kind::notCompiled:
        return { .text
            = (installs ? "The install script could not be compiled. " : "The removal script could not be compiled. ")
                + std::string(installAnew) };
    case AdministratorError::Kind::noResult:
        return { .text = std::string(installs ? "The install script returned no result. "
                                              : "The removal script returned no result. ")
                + "Look in a minute whether Brevanta's menu still offers it, and try again then." };
    case AdministratorError::Kind::scriptFailed:
    case AdministratorError::Kind::cancelled:
        break;
    }
    auto words = wordsForScript(error);
    if (installs)
        words.text.insert(0, "Daemon installation failed: ");
    return words;
}

}

InstallFailure installFailure(const AdministratorError& error, FlightTask task)
{
    const auto words = wordsFor(error, task);
    const auto output = error.message + "\n" + numberText(error.number);
    const auto own = foldedLines(error.message);
    const bool saysAll = own.empty() ? error.number == 0 : words.text.contains(own);
    return { .message = words.text + (words.isKnown ? std::string() : failureDetails(output)),
        .report = words.text + (saysAll ? std::string() : " (" + foldedLines(output) + ")") };
}

InstallFailure incompleteBundleFailure(const std::string& reason)
{
    return { .message = reason + "\n\n" + std::string(installAnew), .report = reason };
}

}
