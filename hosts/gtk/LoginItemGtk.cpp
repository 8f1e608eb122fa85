#include "gtk/LoginItemGtk.h"

#include "base/Executor.h"
#include "gtk/GObjectPtr.h"
#include "posix/AtomicFile.h"

#include <glib.h>
#include <utility>

namespace brevanta {

namespace {

struct KeyFileDeleter {
    void operator()(GKeyFile* file) const { g_key_file_unref(file); }
};
using KeyFile = std::unique_ptr<GKeyFile, KeyFileDeleter>;

constexpr auto group = G_KEY_FILE_DESKTOP_GROUP;
constexpr mode_t entryMode = 0644;

KeyFile newKeyFile() { return KeyFile(g_key_file_new()); }

std::string textIn(const KeyFile& file, const char* key)
{
    const GLibPtr<char> text(g_key_file_get_string(file.get(), group, key, nullptr));
    return text ? text.get() : std::string();
}

// As the key Exec has it: https://specifications.freedesktop.org/desktop-entry-spec/latest/exec-variables.html.
std::string commandFor(const std::filesystem::path& executable)
{
    std::string command = "\"";
    for (const char c : executable.string()) {
        if (c == '"' || c == '`' || c == '$' || c == '\\')
            command.push_back('\\');
        if (c == '%')
            command.push_back('%');
        command.push_back(c);
    }
    return command + '"';
}

}

LoginItemGtk::LoginItemGtk(Executor& mainThread, std::filesystem::path autostart, Application application)
    : m_mainThread(mainThread)
    , m_autostart(std::move(autostart))
    , m_application(std::move(application))
{
}

void LoginItemGtk::readStatus(std::function<void(LoginItemStatus)> onEnd)
{
    m_mainThread.post(m_life.guard([this, onEnd = std::move(onEnd)] { onEnd(status()); }));
}

void LoginItemGtk::registerApplication(std::function<void(std::expected<void, LoginItemError>)> onEnd)
{
    m_mainThread.post(m_life.guard([this, onEnd = std::move(onEnd)] { onEnd(writeEntry()); }));
}

std::filesystem::path LoginItemGtk::entry() const { return m_autostart / (m_application.identifier + ".desktop"); }

LoginItemStatus LoginItemGtk::status() const
{
    const auto file = newKeyFile();
    if (!g_key_file_load_from_file(file.get(), entry().c_str(), G_KEY_FILE_NONE, nullptr))
        return LoginItemStatus::notRegistered;
    if (g_key_file_get_boolean(file.get(), group, G_KEY_FILE_DESKTOP_KEY_HIDDEN, nullptr))
        return LoginItemStatus::requiresApproval;
    return textIn(file, G_KEY_FILE_DESKTOP_KEY_EXEC) == commandFor(m_application.executable)
        ? LoginItemStatus::enabled
        : LoginItemStatus::notRegistered;
}

std::expected<void, LoginItemError> LoginItemGtk::writeEntry() const
{
    std::error_code error;
    std::filesystem::create_directories(m_autostart, error);
    if (error)
        return std::unexpected(LoginItemError { "could not make the folder: " + error.message() });
    const auto file = newKeyFile();
    const auto set = [&](const char* key, const std::string& value) {
        g_key_file_set_string(file.get(), group, key, value.c_str());
    };
    set(G_KEY_FILE_DESKTOP_KEY_TYPE, G_KEY_FILE_DESKTOP_TYPE_APPLICATION);
    set(G_KEY_FILE_DESKTOP_KEY_NAME, m_application.name);
    set(G_KEY_FILE_DESKTOP_KEY_EXEC, commandFor(m_application.executable));
    const GLibPtr<char> text(g_key_file_to_data(file.get(), nullptr, nullptr));
    if (const auto written = writeFileAtomically(entry(), text.get(), entryMode); !written)
        return std::unexpected(LoginItemError { describe(written.error()) });
    return {};
}

}
