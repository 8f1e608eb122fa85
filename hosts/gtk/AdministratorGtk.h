#pragma once

#include "base/LifeToken.h"
#include "platform/Administrator.h"

#include <expected>
#include <filesystem>
#include <functional>
#include <gtkmm.h>
#include <memory>
#include <string>

namespace brevanta {

class Executor;

// The bench's administrator: a dialog asks for a password, of which any but an empty one is right, and the script then
// runs as the user, with stand-ins of the Mac's programs below the development root (tools/system/README.md). Where the
// root is "/", or is no folder, there is no administrator.
class AdministratorGtk final : public Administrator {
public:
    // The dialog stands above `mainWindow` while that is visible. `programs` is the bundle's folder of stand-ins. The
    // window and the main thread's executor outlive this object, whose end takes the dialog off the screen.
    AdministratorGtk(
        Gtk::Window& mainWindow, Executor& mainThread, std::filesystem::path root, std::filesystem::path programs);
    ~AdministratorGtk() override;
    AdministratorGtk(const AdministratorGtk&) = delete;
    AdministratorGtk& operator=(const AdministratorGtk&) = delete;

    // A run that is asked for during another one ends as cancelled, without a dialog.
    void run(const std::string& script, const std::string& prompt,
        std::function<void(std::expected<std::string, AdministratorError>)> onEnd) override;

private:
    struct Run;

    void refuse(
        AdministratorError::Kind reason, std::function<void(std::expected<std::string, AdministratorError>)> onEnd);
    void ask(const std::string& prompt);
    void answer(int response);
    void begin();
    void end(std::expected<std::string, AdministratorError> result);

    Gtk::Window& m_mainWindow;
    Executor& m_mainThread;
    std::filesystem::path m_root;
    std::filesystem::path m_programs;
    std::unique_ptr<Run> m_run; // The one that is under way.
    LifeToken m_life;
};

}
