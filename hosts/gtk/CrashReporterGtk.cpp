#include "gtk/CrashReporterGtk.h"

#include "base/JsonWriter.h"
#include "platform/FileStore.h"

#include <nlohmann/json.hpp>
#include <utility>

namespace brevanta {

CrashReporterGtk::CrashReporterGtk(FileStore& files, std::optional<std::filesystem::path> record)
    : m_files(files)
    , m_record(std::move(record))
{
}

std::expected<void, CrashReporterError> CrashReporterGtk::start(const CrashReporterOptions& options)
{
    if (!m_record)
        return std::unexpected(CrashReporterError {
            .kind = CrashReporterError::Kind::unavailable, .message = "this system has no crash reporter" });
    const Json record { { "host", options.host }, { "environment", options.environment },
        { "release", options.release } };
    if (const auto written = m_files.replace(*m_record, json::scriptText(record), FilePermissions::readableByAll);
        !written)
        return std::unexpected(CrashReporterError { .message = written.error().message });
    return {};
}

}
