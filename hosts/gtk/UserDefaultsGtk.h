#pragma once

#include "platform/UserDefaults.h"

#include <expected>
#include <filesystem>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace brevanta {

class SystemLog;

class MainLoop;
class Timer;

// A JSON object in a file of mode 0600, replaced as a whole at each change; its folders are made when they are missing.
// The file is read anew before each change, so that what another process has stored under other keys stays. A file that
// cannot be read, or is no JSON object, is moved aside under a name of its own: at the start the store then begins
// empty, later it goes on with what this process knows. Of two processes that change it at the same moment the later
// one wins. What could not be written is tried again every ten seconds, and as this object goes.
//
// A date is the object {"date": "2026-11-21T12:00:00.000Z"}, with milliseconds and in UTC.
class UserDefaultsGtk final : public UserDefaults {
public:
    // `keptAsItIs` never touches the file, whatever is in it: what is set lasts for this process only.
    enum class FileUse { replaced, keptAsItIs };

    // Log and main loop outlive this object.
    UserDefaultsGtk(std::filesystem::path file, SystemLog& log, MainLoop& mainLoop, FileUse use = FileUse::replaced);
    ~UserDefaultsGtk() override;
    UserDefaultsGtk(const UserDefaultsGtk&) = delete;
    UserDefaultsGtk& operator=(const UserDefaultsGtk&) = delete;

    // As of the last time that this process changed something, or its start.
    [[nodiscard]] std::optional<DefaultsValue> get(std::string_view key) const override;

    // Text that is not UTF-8, infinity and not-a-number, and dates outside of the years 0000 to 9999 have no form in
    // the file: they are kept for this process only. Dates are rounded to milliseconds.
    void set(std::string_view key, const DefaultsValue& value) override;

    // Nothing is stored in a file that cannot be read.
    [[nodiscard]] StoredDefault persistent(std::string_view key) const override;

    void remove(std::string_view key) override;

private:
    [[nodiscard]] std::expected<nlohmann::json, std::string> readFile() const;
    void refresh();
    void applyUnsaved();
    void moveAside(const std::string& reason);
    void save();
    [[nodiscard]] std::expected<void, std::string> write() const;
    void writeAgain();

    std::filesystem::path m_file;
    SystemLog& m_log;
    MainLoop& m_mainLoop;
    nlohmann::json m_stored;
    std::map<std::string, DefaultsValue, std::less<>> m_unstorable;
    std::map<std::string, std::optional<nlohmann::json>> m_unsaved; // Nothing stands for a removed key.
    std::string m_lastFailure; // What the log was told last; empty once a write has gone well.
    std::unique_ptr<Timer> m_nextAttempt; // While something is unsaved.
    FileUse m_fileUse;
};

}
