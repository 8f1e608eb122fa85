#pragma once

#include "diagnosis/DiagnosisFacts.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brevanta {

enum class FindingVerdict {
    good,
    notice, // Worth knowing; there is nothing that the user has to do about it.
    needsUser,
};

// What was found of one thing.
struct Finding {
    std::string key; // Names the thing for programs, and goes on to be its name: "service.health".
    std::string title; // Names it for people.
    std::string state; // How it is, for programs: one of the words in the manual page; empty where there are none.
    std::string text; // The same for people.
    FindingVerdict verdict { FindingVerdict::good };
    std::string remedy; // What the user is to do, in a sentence; empty unless `needsUser`.

    bool operator==(const Finding&) const = default;
};

struct Diagnosis {
    std::vector<Finding> findings; // What stands first is to be put right first.

    [[nodiscard]] bool needsUser() const;
    [[nodiscard]] bool allIsWell() const; // Everything is as it should be, and nothing is unknown.

    // The one thing to do now; nothing when nothing needs the user.
    [[nodiscard]] std::optional<std::string> remedy() const;
};

// A pure function.
[[nodiscard]] Diagnosis diagnose(const DiagnosisFacts& facts);

}
