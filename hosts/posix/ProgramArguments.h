#pragma once

#include "diagnosis/DiagnosisFormat.h"

#include <expected>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace brevanta {

enum class ProgramAction { run, showHelp, showVersion, diagnose };

struct UnknownArgument {
    std::string argument;

    bool operator==(const UnknownArgument&) const = default;
};

struct ProgramRequest {
    ProgramAction action { ProgramAction::run };
    DiagnosisFormat format { DiagnosisFormat::text }; // Of `diagnose`.
    std::vector<std::string> links; // In their order, as they were written; they need not be well-formed.

    bool operator==(const ProgramRequest&) const = default;
};

// Whether the text begins with the application's own scheme, "brevanta:", in letters of either case (RFC 3986,
// section 3.1).
[[nodiscard]] bool isLink(std::string_view text);

// What the command line asks for; `arguments` is without the program's name. The first argument that asks for help, the
// version or a diagnosis decides, unless an unknown one stands anywhere; "--json" is unknown where no diagnosis is
// asked for.
[[nodiscard]] std::expected<ProgramRequest, UnknownArgument> parseProgramArguments(
    std::span<const char* const> arguments);

// Several lines, each with its line feed.
[[nodiscard]] std::string_view programUsage();

}
