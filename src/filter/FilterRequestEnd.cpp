#include "filter/FilterRequestEnd.h"

namespace brevanta {

namespace {

std::string describe(const FilterError& error)
{
    return error.domain + " " + std::to_string(error.code) + (error.message.empty() ? "" : ": " + error.message);
}

// The codes are those of "NEFilterManagerError" and "OSSystemExtensionError" of Apple's documentation.
const char* textFor(const FilterError& error)
{
    constexpr auto other = "macOS reported a problem. Try again, and restart this Mac if that does not help.";
    if (error.domain == "NEFilterErrorDomain")
        return error.code == 5 ? "macOS was not allowed to set up the filter. Try again, and choose Allow when it asks."
                               : other;
    if (error.domain != "OSSystemExtensionErrorDomain")
        return other;
    switch (error.code) {
    case 2: // Entitlement, place, name, kind, signature: each is one of the bundle.
    case 3:
    case 4:
    case 5:
    case 6:
    case 7:
    case 8:
    case 9:
        return "This copy of Brevanta is damaged. Install Brevanta anew, and try again.";
    case 10:
        return "A policy on this Mac does not allow it. Ask whoever manages this Mac.";
    case 13:
        return "macOS needs an administrator's permission. Try again, and give it when macOS asks.";
    default:
        return other;
    }
}

}

std::string describe(const FilterRequestEnd& end)
{
    const std::string replaced = end.outcome.replaced ? ", an older extension was replaced" : "";
    switch (end.outcome.kind) {
    case LaunchActivationOutcome::Kind::completed:
        return "completed" + replaced;
    case LaunchActivationOutcome::Kind::failed:
        return "failed (" + (end.error ? describe(*end.error) : "no answer") + ")" + replaced;
    case LaunchActivationOutcome::Kind::willCompleteAfterReboot:
        return "will complete after a restart of the Mac";
    case LaunchActivationOutcome::Kind::needsUserApproval:
        return "waits for the user's approval";
    case LaunchActivationOutcome::Kind::skipped:
        break;
    }
    return end.kept == FilterRequestEnd::Kept::no ? "skipped" : "skipped, the extension is current";
}

std::string failureText(const FilterRequestEnd& end)
{
    if (end.error)
        return textFor(*end.error);
    return "macOS has not answered yet. If it asks for your permission, give it. Otherwise try again, and restart this "
           "Mac if that does not help.";
}

}
