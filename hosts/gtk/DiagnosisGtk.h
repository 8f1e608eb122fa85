#pragma once

#include "app/BuildConfiguration.h"
#include "diagnosis/DiagnosisFormat.h"

namespace brevanta {

// Looks at everything, writes what was found to standard output, and gives the process's exit status. The composition
// root of a process that does nothing else: it needs no display and no bus.
[[nodiscard]] int runDiagnosis(const BuildConfiguration& configuration, DiagnosisFormat format);

}
