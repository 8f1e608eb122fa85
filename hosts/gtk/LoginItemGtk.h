#pragma once

#include "base/LifeToken.h"
#include "platform/LoginItem.h"

#include <filesystem>
#include <optional>

namespace brevanta {

class Executor;

// An entry in the user's autostart folder: https://specifications.freedesktop.org/autostart-spec/latest/. One that the
// user has hidden counts as switched off, and one that starts another program as none.
class LoginItemGtk final : public LoginItem {
public:
    struct Application {
        std::string name;
        std::string identifier; // Names the entry.
        std::filesystem::path executable;
    };

    // `autostart` is the folder, which is made when it is needed.
    LoginItemGtk(Executor& mainThread, std::filesystem::path autostart, Application application);

    void readStatus(std::function<void(LoginItemStatus)> onEnd) override;
    void registerApplication(std::function<void(std::expected<void, LoginItemError>)> onEnd) override;

private:
    [[nodiscard]] std::filesystem::path entry() const;
    [[nodiscard]] LoginItemStatus status() const;
    [[nodiscard]] std::expected<void, LoginItemError> writeEntry() const;

    Executor& m_mainThread;
    std::filesystem::path m_autostart;
    Application m_application;
    LifeToken m_life;
};

}
