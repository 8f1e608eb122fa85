#include "support/BrevantaClient.h"

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <glib.h>

namespace brevanta::functional {

static constexpr auto desktopEntryName = "com.brevanta.KestreluneMac.desktop";

static std::string pathFromEnvironment(const char* variable, const char* builtPath)
{
    const auto* value = std::getenv(variable);
    return value && *value ? value : builtPath;
}

std::string clientExecutable() { return pathFromEnvironment("BREVANTA_TEST_CLIENT", BREVANTA_BUILT_CLIENT); }

std::string prodClientExecutable()
{
    return pathFromEnvironment("BREVANTA_TEST_PROD_CLIENT", BREVANTA_BUILT_PROD_CLIENT);
}

std::string serviceExecutable() { return pathFromEnvironment("BREVANTA_TEST_SERVICE", BREVANTA_BUILT_SERVICE); }

std::string webExecutable() { return pathFromEnvironment("BREVANTA_TEST_WEB", BREVANTA_BUILT_WEB); }

std::string systemExecutable() { return pathFromEnvironment("BREVANTA_TEST_SYSTEM", BREVANTA_BUILT_SYSTEM); }

BrevantaClient::BrevantaClient(BrevantaClientOptions options)
    : m_options(std::move(options))
{
}

// The executable's path in a copy of its bundle below a root of our own; the executable itself when it is in no bundle.
std::expected<std::string, std::string> BrevantaClient::installBundle()
{
    namespace fs = std::filesystem;
    std::error_code error;
    const auto root = m_directory.path() / "root";
    for (const auto& path : { root / "Applications", root / m_options.bundleFolder, m_directory.path() / "home",
             m_directory.path() / "run" })
        fs::create_directories(path, error);
    fs::permissions(m_directory.path() / "run", fs::perms::owner_all, error);
    const fs::path executable = fs::absolute(m_options.executable, error);
    if (!fs::exists(executable, error))
        return std::unexpected("there is no client at " + executable.string());
    const auto contents = executable.parent_path().parent_path();
    if (contents.filename() != "Contents")
        return executable.string();
    const auto bundle = contents.parent_path();
    const auto installed = root / m_options.bundleFolder / bundle.filename();
    fs::copy(bundle, installed, fs::copy_options::recursive | fs::copy_options::copy_symlinks, error);
    if (error)
        return std::unexpected("the bundle cannot be copied: " + error.message());
    return (installed / "Contents" / "MacOS" / executable.filename()).string();
}

// What opens web pages and folders for this home's user: keeps their URLs in a file.
std::expected<void, std::string> BrevantaClient::installBrowser() const
{
    namespace fs = std::filesystem;
    std::error_code error;
    const auto home = m_directory.path() / "home";
    const auto applications = home / ".local/share/applications";
    fs::create_directories(applications, error);
    const auto program = home / "browser";
    std::ofstream(program) << "#!/bin/sh\nprintf '%s\\n' \"$1\" >> '" << openedUrlsFile().string() << "'\n";
    fs::permissions(program, fs::perms::owner_all, error);
    std::ofstream(applications / "browser.desktop")
        << "[Desktop Entry]\nType=Application\nName=Browser\nExec=" << program.string()
        << " %u\nMimeType=x-scheme-handler/https;x-scheme-handler/http;"
           "x-scheme-handler/x-apple.systempreferences;inode/directory;\n";
    std::ofstream defaults(applications / "mimeapps.list");
    defaults << "[Default Applications]\nx-scheme-handler/https=browser.desktop\n"
                "x-scheme-handler/http=browser.desktop\n"
                "x-scheme-handler/x-apple.systempreferences=browser.desktop\n"
                "inode/directory=browser.desktop\n";
    return defaults ? std::expected<void, std::string>() : std::unexpected("no browser could be installed");
}

// What the build leaves for desktops beside the bundle, with the entry for the copy of the bundle. A client in no
// bundle has nothing of this.
std::expected<void, std::string> BrevantaClient::installDesktopEntry() const
{
    namespace fs = std::filesystem;
    const fs::path built = m_options.executable;
    const auto builtShare = built.parent_path() / ".." / ".." / ".." / ".." / "share";
    const auto share = root() / "share";
    const auto entryFile = share / "applications" / desktopEntryName;
    std::error_code error;
    if (!fs::exists(builtShare, error))
        return {};
    fs::copy(builtShare, share, fs::copy_options::recursive, error);
    std::ifstream source(entryFile);
    std::string entry(std::istreambuf_iterator<char>(source), {});
    const auto place = entry.find(built.string());
    if (place == std::string::npos)
        return std::unexpected("the desktop entry does not start " + built.string());
    entry.replace(place, built.string().size(), m_executable);
    std::ofstream(entryFile) << entry;
    return {};
}

std::vector<std::string> BrevantaClient::environment(Session session) const
{
    auto environment = neutralEnvironment();
    const auto set = [&](const std::string& name, const std::string& value) {
        std::erase_if(environment, [&](const std::string& entry) { return entry.starts_with(name + "="); });
        environment.push_back(name + "=" + value);
    };
    const auto directory = m_directory.path().string();
    set("HOME", directory + "/home");
    set("XDG_RUNTIME_DIR", directory + "/run");
    set("XDG_CONFIG_HOME", directory + "/home/.config");
    set("XDG_DATA_HOME", directory + "/home/.local/share");
    set("XDG_CACHE_HOME", directory + "/home/.cache");
    set("XDG_DATA_DIRS", (root() / "share").string() + ":/usr/local/share:/usr/share");
    set("BREVANTA_ROOT", directory + "/root");
    set("BREVANTA_SOCKET", m_options.socketPath);
    set("BREVANTA_APP_URL", m_options.appUrl);
    set("BREVANTA_TLS_CERT", m_options.certificatePath);
    set("BREVANTA_TRUSTED_HOSTS", m_options.trustedHosts);
    set("BREVANTA_SIGN_IN_HOSTS", m_options.signInHosts);
    for (const auto& [name, value] : m_options.variables)
        set(name, value);
    // Nothing that a test run could share with the user's own session or be slowed down by.
    set("NO_AT_BRIDGE", "1");
    set("GTK_A11Y", "none");
    set("GSETTINGS_BACKEND", "memory");
    set("ALSA_CONFIG_PATH", "/dev/null"); // No sound system, whose library would say so on the standard error.
    set("GIO_USE_VFS", "local");
    // Without an address GIO would look for a bus of the user's session, or start one.
    const bool hasBus = session == Session::desktop && !m_options.busAddress.empty();
    set("DBUS_SESSION_BUS_ADDRESS", hasBus ? m_options.busAddress : "disabled:");
    if (session == Session::desktop && !m_options.display.empty())
        set("DISPLAY", m_options.display);
    return environment;
}

std::expected<void, std::string> BrevantaClient::changeSystem(const std::vector<std::string>& command) const
{
    constexpr Milliseconds patience { 10000 };
    std::vector<std::string> commandLine { systemExecutable(), "--root", root().string() };
    commandLine.insert(commandLine.end(), command.begin(), command.end());
    const auto process = ChildProcess::start({ .arguments = std::move(commandLine), .environment = environment() });
    if (!process)
        return std::unexpected(process.error());
    if ((*process)->awaitExit(patience) != 0)
        return std::unexpected("the system was not changed: " + (*process)->errors().text());
    return {};
}

std::filesystem::path BrevantaClient::sharedStateFile() const
{
    return root() / "Users" / g_get_user_name()
        / "Library/Group Containers/group.com.brevanta.shared/block_state.dev.json";
}

std::expected<std::unique_ptr<ChildProcess>, std::string> BrevantaClient::openLink(const std::string& link) const
{
    return ChildProcess::start({ .arguments = { "gio", "open", link }, .environment = environment() });
}

std::vector<std::string> BrevantaClient::commandLine(const std::vector<std::string>& arguments) const
{
    std::vector<std::string> line;
    if (m_options.volume == BundleVolume::readOnly) {
        const auto macOS = std::filesystem::path(m_executable).parent_path();
        const auto bundle = macOS.parent_path().parent_path().string();
        line = { "bwrap", "--dev-bind", "/", "/", "--ro-bind", bundle, bundle };
    }
    line.push_back(m_executable);
    line.insert(line.end(), arguments.begin(), arguments.end());
    return line;
}

std::expected<std::unique_ptr<ChildProcess>, std::string> BrevantaClient::startProcess(
    const std::vector<std::string>& arguments) const
{
    return ChildProcess::start(
        { .arguments = commandLine(arguments), .environment = environment(), .errorFilePath = m_options.logPath });
}

std::optional<BrevantaClient::CommandLineAnswer> BrevantaClient::ask(
    const std::vector<std::string>& arguments, Milliseconds within) const
{
    const auto process
        = ChildProcess::start({ .arguments = commandLine(arguments), .environment = environment(Session::none) });
    if (!process)
        return std::nullopt;
    const auto exitStatus = (*process)->awaitExit(within);
    if (!exitStatus)
        return std::nullopt;
    return CommandLineAnswer { *exitStatus, (*process)->output().text(), (*process)->errors().text() };
}

std::expected<void, std::string> BrevantaClient::start()
{
    auto executable = installBundle();
    if (!executable)
        return std::unexpected(executable.error());
    m_executable = *executable;
    if (auto browser = installBrowser(); !browser)
        return browser;
    if (auto entry = installDesktopEntry(); !entry)
        return entry;
    return startAgain();
}

std::expected<void, std::string> BrevantaClient::startAgain()
{
    m_earlierLogs += log();
    auto process = startProcess(m_options.arguments);
    if (!process)
        return std::unexpected("the client cannot be started: " + process.error());
    m_process = std::move(*process);
    return {};
}

std::optional<pid_t> BrevantaClient::webProcess() const
{
    for (const auto id : m_process->groupMembers()) {
        std::ifstream file("/proc/" + std::to_string(id) + "/comm"); // proc(5): the first 15 characters of the name.
        std::string name;
        std::getline(file, name);
        if (name == "WebKitWebProces")
            return id;
    }
    return std::nullopt;
}

bool BrevantaClient::killWebProcess(Milliseconds within)
{
    const auto id = webProcess();
    if (!id)
        return false;
    ::kill(*id, SIGKILL);
    return awaitByAsking([&] { return webProcess() != id; }, within);
}

}
