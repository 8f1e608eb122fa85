#pragma once

#include "app/BuildConfiguration.h"
#include "diagnosis/DiagnosisFacts.h"

#include <optional>

namespace brevanta {

struct BlockingStatus;
struct DiagnosisPorts;

// What a diagnosis finds in the file system; nothing is written. Main thread only.

// `status` is what the service says now, with which the file is compared; null while it does not answer. The lease is
// left out: each answer may have another one. Nothing where the system has no folder for the file.
[[nodiscard]] std::optional<DiagnosisFacts::SharedState> sharedStateIn(
    const DiagnosisPorts& ports, Flavour flavour, const BlockingStatus* status);

[[nodiscard]] DiagnosisFacts::Preferences preferencesIn(const DiagnosisPorts& ports);

// Whether a removal that has made this marker may still be at work; one that is no file, or without a time, is old.
[[nodiscard]] bool isMarkerFresh(const DiagnosisPorts& ports, const std::filesystem::path& marker);

}
