#pragma once

#include "platform/CrashReporter.h"

#include <filesystem>
#include <optional>

namespace brevanta {

class FileStore;

// The bench has no crash reporter: what one would have been started with is taken down in a file instead, a JSON object
// with the texts "host", "environment" and "release".
class CrashReporterGtk final : public CrashReporter {
public:
    // Without a `record` there is none of this: starting fails with `unavailable`. `files` outlives this object.
    CrashReporterGtk(FileStore& files, std::optional<std::filesystem::path> record);

    [[nodiscard]] std::expected<void, CrashReporterError> start(const CrashReporterOptions& options) override;

private:
    FileStore& m_files;
    std::optional<std::filesystem::path> m_record;
};

}
