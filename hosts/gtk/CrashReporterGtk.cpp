#include "gtk/CrashReporterGtk.h"

#include "base/JsonWriter.h"

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
    m_options = options;
    if (const auto written = write(); !written)
        return std::unexpected(CrashReporterError { .message = written.error().message });
    return {};
}

void CrashReporterGtk::capture(const CapturedError& error)
{
    m_errors.push_back({ .kind = error.kind, .message = m_options.scrub({}, error.message) });
    static_cast<void>(write()); // As a report that cannot be sent.
}

std::expected<FileStamp, FileStoreError> CrashReporterGtk::write()
{
    Json record { { "host", m_options.host }, { "environment", m_options.environment },
        { "release", m_options.release } };
    for (const auto& error : m_errors)
        record["errors"].push_back({ { "kind", error.kind }, { "message", error.message } });
    return m_files.replace(*m_record, json::scriptText(record), FilePermissions::readableByAll);
}

}
