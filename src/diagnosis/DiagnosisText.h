#pragma once

#include "diagnosis/Diagnosis.h"
#include "diagnosis/DiagnosisFormat.h"

#include <filesystem>
#include <span>
#include <string>

namespace brevanta {

// What is kept out of every text of a diagnosis, besides what no report may hold (see `scrubReport`).
struct DiagnosisPrivacy {
    std::filesystem::path home; // Reads "~".
    std::span<const std::string> secrets;
};

// For people: a line for each finding, what to do about it below, and at last the one thing to do now. Each line ends
// in a line feed, and holds no other control character.
[[nodiscard]] std::string diagnosisText(const Diagnosis& diagnosis, const DiagnosisPrivacy& privacy);

// For programs: one JSON object and a line feed. "schema" is 1, "ok" whether nothing needs the user, "remedy" the one
// thing to do now or null, "findings" a list of objects with "key", "title", "state" (null where there is none),
// "text", "verdict"
// ("good", "notice" or "needsUser") and "remedy" (null where there is none). Bytes that are not UTF-8 are replaced.
[[nodiscard]] std::string diagnosisJson(const Diagnosis& diagnosis, const DiagnosisPrivacy& privacy);

[[nodiscard]] std::string diagnosisOutput(
    const Diagnosis& diagnosis, const DiagnosisPrivacy& privacy, DiagnosisFormat format);

}
