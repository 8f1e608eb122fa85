#pragma once

#include "diagnosis/Diagnosis.h"

#include <string>
#include <string_view>

namespace brevanta {

// What a diagnosis finds, subject by subject: pure functions of the facts.

[[nodiscard]] Finding locationFinding(const DiagnosisFacts& facts);
[[nodiscard]] Finding systemFinding(const DiagnosisFacts& facts);
[[nodiscard]] Finding storageFinding(const DiagnosisFacts& facts);
[[nodiscard]] Finding preferencesFinding(const DiagnosisFacts& facts);
[[nodiscard]] Finding clientFinding(const DiagnosisFacts& facts);
[[nodiscard]] Finding notificationsFinding(const DiagnosisFacts& facts);
[[nodiscard]] Finding updatesFinding(const DiagnosisFacts& facts);
[[nodiscard]] Finding loginItemFinding(const DiagnosisFacts& facts);

[[nodiscard]] Finding removalFinding(const DiagnosisFacts& facts);
[[nodiscard]] Finding serviceFinding(const DiagnosisFacts& facts);
[[nodiscard]] Finding runningVersionFinding(const DiagnosisFacts& facts);
[[nodiscard]] Finding backgroundItemFinding(const DiagnosisFacts& facts);
[[nodiscard]] Finding socketFinding(const DiagnosisFacts& facts);
[[nodiscard]] Finding accountFinding(const DiagnosisFacts& facts);

void addFilter(std::vector<Finding>& findings, const DiagnosisFacts& facts);
[[nodiscard]] Finding sharedStateFinding(const DiagnosisFacts& facts);

void addNativeMessaging(std::vector<Finding>& findings, const DiagnosisFacts& facts);
[[nodiscard]] Finding soundsFinding(const DiagnosisFacts& facts);

// What they have in common.

struct Subject {
    std::string key;
    std::string title;
};

[[nodiscard]] Finding good(Subject subject, std::string_view state, std::string text);
[[nodiscard]] Finding notice(Subject subject, std::string_view state, std::string text);
[[nodiscard]] Finding needsUser(Subject subject, std::string_view state, std::string text, std::string remedy);

// From here on nothing is to be installed, updated, restarted or signed in until the removal has ended.
[[nodiscard]] bool isBeingRemoved(const DiagnosisFacts& facts);
// The finding, without its remedy while the service is being removed.
[[nodiscard]] Finding unlessBeingRemoved(Finding finding, const DiagnosisFacts& facts);

// What the client puts right at its start.
[[nodiscard]] std::string openAnew(const DiagnosisFacts& facts, std::string_view what);

// What takes an administrator: a sentence's end, in the infinitive.
// The user's own hands do it, and perhaps those of somebody else who types the password.
[[nodiscard]] std::string withPassword(const DiagnosisFacts& facts, std::string what);
// Those of an administrator who is logged in.
[[nodiscard]] std::string asAdministrator(const DiagnosisFacts& facts, const std::string& what);
// It is the user's unless the user is known to be no administrator.
[[nodiscard]] std::string unlessAdministrators(const DiagnosisFacts& facts, std::string what);

// Who may not write in a folder, and what to do about it. A disk that takes nothing at all is said once, by
// `storageFinding`: `remedy` is empty then.
struct ObstacleWords {
    std::string state;
    std::string reason; // "your user may not write in /Library"; empty without an obstacle.
    std::string remedy;
};
[[nodiscard]] ObstacleWords obstacleWords(
    const DiagnosisFacts& facts, const FolderFacts& folder, const std::filesystem::path& wanted);

}
