#pragma once

namespace brevanta {

// Who is to read a diagnosis: people, or programs.
enum class DiagnosisFormat { text, json };

}
