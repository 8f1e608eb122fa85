#pragma once

namespace brevanta {

// How the activation of the content filter that is tried at launch has ended.
struct LaunchActivationOutcome {
    enum class Kind { completed, failed, willCompleteAfterReboot, needsUserApproval, skipped };

    Kind kind { Kind::skipped };
    bool replaced { false }; // An older extension was replaced; for `completed` and `failed` only.

    bool operator==(const LaunchActivationOutcome&) const = default;
};

}
