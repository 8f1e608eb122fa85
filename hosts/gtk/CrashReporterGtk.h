#pragma once

#include "platform/CrashReporter.h"
#include "platform/FileStore.h"

#include <filesystem>
#include <optional>
#include <vector>

namespace brevanta {

// The bench has no crash reporter: what one would have been started with is taken down in a file instead, a JSON object
// with the texts "host", "environment" and "release", and so are the errors that it would have sent, scrubbed: a list
// "errors" of objects with "kind" and "message".
class CrashReporterGtk final : public CrashReporter {
public:
    // Without a `record` there is none of this: starting fails with `unavailable`. `files` outlives this object.
    CrashReporterGtk(FileStore& files, std::optional<std::filesystem::path> record);

    [[nodiscard]] std::expected<void, CrashReporterError> start(const CrashReporterOptions& options) override;
    void capture(const CapturedError& error) override;

private:
    [[nodiscard]] std::expected<FileStamp, FileStoreError> write();

    FileStore& m_files;
    std::optional<std::filesystem::path> m_record;
    CrashReporterOptions m_options;
    std::vector<CapturedError> m_errors;
};

}
