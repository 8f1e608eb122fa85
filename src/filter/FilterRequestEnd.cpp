#include "filter/FilterRequestEnd.h"

#include "base/FailureDetails.h"

namespace brevanta {

namespace {

std::string describe(const FilterError& error)
{
    return error.domain + " " + std::to_string(error.code) + (error.message.empty() ? "" : ": " + error.message);
}

// "NEFilterManagerError" of Apple's documentation; null for what says nothing.
const char* configurationText(int code)
{
    switch (code) {
    case 1: // The configuration is invalid.
        return "macOS does not accept the filter's configuration. Install Brevanta anew, and try again.";
    case 2: // It is disabled.
        return "The filter is switched off in System Settings. Turn it on there, under Network, and try again.";
    case 3: // It is stale.
        return "The filter's configuration has been changed meanwhile. Try again.";
    case 4: // It cannot be removed.
        return "macOS does not allow the filter's configuration to be removed. Ask whoever manages this Mac.";
    case 5: // Permission denied.
        return "macOS was not allowed to set up the filter. Try again, and choose Allow when it asks.";
    default:
        return nullptr;
    }
}

// "OSSystemExtensionError" of Apple's documentation; null for what says nothing.
const char* extensionText(int code)
{
    switch (code) {
    case 3: // The application's place.
        return "macOS does not take the filter from where Brevanta is. Move Brevanta to the Applications folder, and "
               "open it from there.";
    case 2: // Entitlement, presence, name, kind, signature, validity: each is one of the bundle.
    case FilterSystem::extensionNotFoundCode:
    case 5:
    case 6:
    case 7:
    case 8:
    case 9:
        return "This copy of Brevanta is damaged. Install Brevanta anew, and try again.";
    case 10:
        return "A policy on this Mac does not allow it. Ask whoever manages this Mac.";
    case FilterSystem::requestCanceledCode:
        return "macOS cancelled the request. Try again.";
    case FilterSystem::requestSupersededCode:
        return "A newer request took the place of this one. Try again in a minute.";
    case 13:
        return "macOS needs an administrator's permission. Try again, and give it when macOS asks.";
    default:
        return nullptr;
    }
}

std::string textFor(const FilterError& error)
{
    const char* known = nullptr;
    if (error.domain == "NEFilterErrorDomain")
        known = configurationText(error.code);
    else if (error.domain == "OSSystemExtensionErrorDomain")
        known = extensionText(error.code);
    if (known)
        return known;
    return "macOS reported a problem that Brevanta does not know. Try again, and restart this Mac if that does not "
           "help."
        + failureDetails(describe(error));
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
