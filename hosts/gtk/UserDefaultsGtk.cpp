#include "gtk/UserDefaultsGtk.h"

#include "gtk/GObjectPtr.h"
#include "gtk/UtcTimestamp.h"
#include "platform/MainLoop.h"
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
constexpr auto dateKey = "date";

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

std::optional<DefaultsValue> date(const Json& object)
{
    const auto text = object.find(dateKey);
    if (object.size() != 1 || text == object.end() || !text->is_string())
        return std::nullopt;
    const auto seconds = parseUtcTimestamp(text->get_ref<const std::string&>());
    return seconds ? std::optional<DefaultsValue>(DefaultsDate { *seconds }) : std::nullopt;
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
    if (json.is_object())
        return date(json);
    if (const auto number = integer(json))
        return *number;
    return std::nullopt;
}

struct ToJson {
    std::optional<Json> operator()(const DefaultsDate& date) const
    {
        const auto text = formatUtcTimestamp(date.secondsSince1970);
        return text ? std::optional(Json { { dateKey, *text } }) : std::nullopt;
    }
    std::optional<Json> operator()(double number) const
    {
        return std::isfinite(number) ? std::optional(Json(number)) : std::nullopt;
    }
    std::optional<Json> operator()(const auto& other) const { return Json(other); }
};

// Nothing when the file has no form for it.
std::optional<Json> toJson(std::string_view key, const DefaultsValue& value)
{
    auto json = std::visit(ToJson {}, value);
    try {
        static_cast<void>(Json(key).dump());
        if (json)
            static_cast<void>(json->dump());
    } catch (const Json::exception&) {
        return std::nullopt;
    }
    return json;
}

bool isNoFile(const GError& error)
{
    return g_error_matches(&error, G_FILE_ERROR, G_FILE_ERROR_NOENT)
        || g_error_matches(&error, G_FILE_ERROR, G_FILE_ERROR_NOTDIR);
}

}

UserDefaultsGtk::UserDefaultsGtk(std::filesystem::path file, SystemLog& log, MainLoop& mainLoop, FileUse use)
    : m_file(std::move(file))
    , m_log(log)
    , m_mainLoop(mainLoop)
    , m_stored(Json::object())
    , m_fileUse(use)
{
    if (use == FileUse::keptAsItIs)
        m_stored = readFile().value_or(Json::object());
    else
        refresh();
}

UserDefaultsGtk::~UserDefaultsGtk() { writeAgain(); }

std::optional<DefaultsValue> UserDefaultsGtk::get(std::string_view key) const
{
    if (const auto kept = m_unstorable.find(key); kept != m_unstorable.end())
        return kept->second;
    const auto stored = m_stored.find(key);
    return stored != m_stored.end() ? toValue(*stored) : std::nullopt;
}

void UserDefaultsGtk::set(std::string_view key, const DefaultsValue& value)
{
    auto json = toJson(key, value);
    if (!json) {
        if (get(key) != value)
            m_log.log("[UserDefaults] a value has no form in the file: kept until the application quits");
        m_unstorable.insert_or_assign(std::string(key), value);
        return;
    }
    if (const auto kept = m_unstorable.find(key); kept != m_unstorable.end())
        m_unstorable.erase(kept);
    refresh();
    // By value, since 1 and 1.0 are equal in JSON.
    if (m_unsaved.empty() && get(key) == toValue(*json))
        return;
    m_unsaved[std::string(key)] = std::move(*json);
    save();
}

StoredDefault UserDefaultsGtk::persistent(std::string_view key) const
{
    const auto document = readFile();
    if (!document)
        return {};
    const auto stored = document->find(key);
    if (stored == document->end())
        return {};
    return { .isStored = true, .value = toValue(*stored) };
}

void UserDefaultsGtk::remove(std::string_view key)
{
    if (const auto kept = m_unstorable.find(key); kept != m_unstorable.end())
        m_unstorable.erase(kept);
    refresh();
    if (m_unsaved.empty() && !m_stored.contains(key))
        return;
    m_unsaved[std::string(key)] = std::nullopt;
    save();
}

// The object that the file holds; an empty one when there is no file. The error says what is wrong with it.
std::expected<Json, std::string> UserDefaultsGtk::readFile() const
{
    char* bytes = nullptr;
    gsize size = 0;
    GError* error = nullptr;
    if (!g_file_get_contents(m_file.c_str(), &bytes, &size, &error)) {
        const GLibPtr<GError> owned(error);
        if (isNoFile(*error))
            return Json::object();
        return std::unexpected("cannot be read");
    }
    const GLibPtr<char> owned(bytes);
    auto document = Json::parse(bytes, bytes + size, nullptr, false);
    if (!document.is_object())
        return std::unexpected("holds no JSON object");
    return document;
}

void UserDefaultsGtk::refresh()
{
    if (m_fileUse == FileUse::keptAsItIs)
        return;
    if (auto document = readFile()) {
        m_stored = std::move(*document);
    } else {
        moveAside(document.error());
        for (const auto& [key, value] : m_stored.items())
            m_unsaved.try_emplace(key, value);
    }
    applyUnsaved();
}

void UserDefaultsGtk::applyUnsaved()
{
    for (const auto& [key, value] : m_unsaved) {
        if (value)
            m_stored[key] = *value;
        else
            m_stored.erase(key);
    }
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
    m_fileUse = FileUse::keptAsItIs;
    m_log.log("[UserDefaults] " + m_file.string() + ' ' + reason + " and could not be moved: nothing will be stored");
}

void UserDefaultsGtk::save()
{
    applyUnsaved();
    if (m_fileUse == FileUse::keptAsItIs)
        return;
    const auto written = write();
    auto failure = written ? std::string() : written.error();
    if (!written && failure != m_lastFailure)
        m_log.log("[UserDefaults] " + m_file.string() + ": " + failure);
    m_lastFailure = std::move(failure);
    if (written) {
        m_unsaved.clear();
        m_nextAttempt.reset();
    } else if (!m_nextAttempt) {
        constexpr double secondsBetweenAttempts = 10;
        m_nextAttempt = m_mainLoop.startTimer(secondsBetweenAttempts, TimerRepeat::forever, [this] { writeAgain(); });
    }
}

std::expected<void, std::string> UserDefaultsGtk::write() const
{
    if (g_mkdir_with_parents(m_file.parent_path().c_str(), folderMode))
        return std::unexpected(std::string("no folder: ") + std::strerror(errno));
    if (const auto written = writeFileAtomically(m_file, m_stored.dump(4) + '\n', fileMode); !written)
        return std::unexpected(describe(written.error()));
    return {};
}

void UserDefaultsGtk::writeAgain()
{
    if (m_unsaved.empty())
        return;
    refresh();
    save();
}

}
