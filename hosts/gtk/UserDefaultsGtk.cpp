#include "gtk/UserDefaultsGtk.h"

#include "gtk/GObjectPtr.h"
#include "platform/SystemLog.h"
#include "posix/AtomicFile.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>

namespace brevanta {

namespace {

using Json = nlohmann::json;

constexpr mode_t fileMode = 0600;
constexpr int folderMode = 0700;

std::optional<std::int64_t> integer(const Json& value)
{
    // The parser gives every number without a sign as unsigned.
    if (value.is_number_unsigned() && value.get<std::uint64_t>() > INT64_MAX)
        return std::nullopt;
    return value.is_number_integer() ? std::optional(value.get<std::int64_t>()) : std::nullopt;
}

std::optional<DefaultsValue> integers(const Json& array)
{
    std::vector<std::int64_t> numbers;
    for (const auto& element : array) {
        const auto number = integer(element);
        if (!number)
            return std::nullopt;
        numbers.push_back(*number);
    }
    return numbers;
}

std::optional<DefaultsValue> toValue(const Json& json)
{
    if (json.is_boolean())
        return json.get<bool>();
    if (json.is_string())
        return json.get<std::string>();
    if (json.is_number_float())
        return json.get<double>();
    if (json.is_array())
        return integers(json);
    if (const auto number = integer(json))
        return *number;
    return std::nullopt;
}

// Nothing when JSON has no form for it.
std::optional<Json> toJson(std::string_view key, const DefaultsValue& value)
{
    if (const auto* number = std::get_if<double>(&value); number && !std::isfinite(*number))
        return std::nullopt;
    auto json = std::visit([](const auto& alternative) { return Json(alternative); }, value);
    try {
        static_cast<void>(Json(key).dump());
        static_cast<void>(json.dump());
    } catch (const Json::exception&) {
        return std::nullopt;
    }
    return json;
}

}

UserDefaultsGtk::UserDefaultsGtk(std::filesystem::path file, SystemLog& log)
    : m_file(std::move(file))
    , m_log(log)
    , m_stored(Json::object())
{
    load();
}

UserDefaultsGtk::~UserDefaultsGtk() = default;

std::optional<DefaultsValue> UserDefaultsGtk::get(std::string_view key) const
{
    if (const auto kept = m_unstorable.find(key); kept != m_unstorable.end())
        return kept->second;
    const auto stored = m_stored.find(key);
    return stored != m_stored.end() ? toValue(*stored) : std::nullopt;
}

void UserDefaultsGtk::set(std::string_view key, const DefaultsValue& value)
{
    if (m_fileState == FileState::upToDate && get(key) == value)
        return;
    auto json = toJson(key, value);
    if (!json) {
        m_log.log("[UserDefaults] a value has no form in JSON: kept until the application quits");
        m_unstorable.insert_or_assign(std::string(key), value);
        return;
    }
    if (const auto kept = m_unstorable.find(key); kept != m_unstorable.end())
        m_unstorable.erase(kept);
    m_stored[std::string(key)] = std::move(*json);
    save();
}

void UserDefaultsGtk::remove(std::string_view key)
{
    if (const auto kept = m_unstorable.find(key); kept != m_unstorable.end())
        m_unstorable.erase(kept);
    if (m_stored.erase(std::string(key)))
        save();
}

void UserDefaultsGtk::load()
{
    char* bytes = nullptr;
    gsize size = 0;
    GError* error = nullptr;
    if (!g_file_get_contents(m_file.c_str(), &bytes, &size, &error)) {
        const GLibPtr<GError> owned(error);
        if (!g_error_matches(error, G_FILE_ERROR, G_FILE_ERROR_NOENT))
            moveAside("cannot be read");
        return;
    }
    const GLibPtr<char> owned(bytes);
    auto document = Json::parse(bytes, bytes + size, nullptr, false);
    if (document.is_object())
        m_stored = std::move(document);
    else
        moveAside("holds no JSON object");
}

void UserDefaultsGtk::moveAside(const std::string& reason)
{
    constexpr int mostSavedFiles = 1000;
    for (int number = 1; number <= mostSavedFiles; ++number) {
        auto aside = m_file;
        aside += ".damaged-" + std::to_string(number);
        std::error_code error;
        if (std::filesystem::exists(std::filesystem::symlink_status(aside, error)))
            continue;
        std::filesystem::rename(m_file, aside, error);
        if (error)
            break;
        m_log.log("[UserDefaults] " + m_file.string() + ' ' + reason + ": moved to " + aside.string());
        return;
    }
    // What somebody may still be able to rescue must not be written over.
    m_fileState = FileState::keptAsItIs;
    m_log.log("[UserDefaults] " + m_file.string() + ' ' + reason + " and could not be moved: nothing will be stored");
}

void UserDefaultsGtk::save()
{
    if (m_fileState == FileState::keptAsItIs)
        return;
    m_fileState = FileState::behind;
    if (g_mkdir_with_parents(m_file.parent_path().c_str(), folderMode)) {
        m_log.log("[UserDefaults] no folder for " + m_file.string() + ": " + std::strerror(errno));
        return;
    }
    if (const auto written = writeFileAtomically(m_file, m_stored.dump(4) + '\n', fileMode); !written) {
        m_log.log("[UserDefaults] " + m_file.string() + ": " + describe(written.error()));
        return;
    }
    m_fileState = FileState::upToDate;
}

}
