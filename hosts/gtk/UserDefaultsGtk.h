#pragma once

#include "platform/UserDefaults.h"

#include <filesystem>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

namespace brevanta {

class SystemLog;

// A JSON object in a file of mode 0600, replaced as a whole at each change; its folders are made when they are missing.
// A file that cannot be read, or is no JSON object, is moved aside under a name of its own and the store begins empty.
class UserDefaultsGtk final : public UserDefaults {
public:
    UserDefaultsGtk(std::filesystem::path file, SystemLog& log);
    ~UserDefaultsGtk() override;
    UserDefaultsGtk(const UserDefaultsGtk&) = delete;
    UserDefaultsGtk& operator=(const UserDefaultsGtk&) = delete;

    [[nodiscard]] std::optional<DefaultsValue> get(std::string_view key) const override;

    // Text that is not UTF-8, and infinity and not-a-number, have no place in JSON: they are kept for this process
    // only.
    void set(std::string_view key, const DefaultsValue& value) override;

    void remove(std::string_view key) override;

private:
    void load();
    void moveAside(const std::string& reason);
    void save();

    std::filesystem::path m_file;
    SystemLog& m_log;
    nlohmann::json m_stored;
    std::map<std::string, DefaultsValue, std::less<>> m_unstorable;
    enum class FileState { upToDate, behind, keptAsItIs } m_fileState { FileState::upToDate };
};

}
