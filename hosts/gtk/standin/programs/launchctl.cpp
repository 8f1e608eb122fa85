// Stands for launchctl(1) and launchd below a development root; tools/system/README.md says what it knows.
#include "gtk/standin/LaunchProperties.h"
#include "gtk/standin/ServiceProcessControl.h"
#include "gtk/standin/StandInStore.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string>
#include <system_error>
#include <vector>

using namespace brevanta;

namespace {

using Words = std::span<const std::string>;
using Service = StandInStore::Read<ServiceStandIn>;

constexpr std::string_view label = "com.brevanta.daemon";
constexpr std::string_view domain = "system";

// launchctl's own, and one of sysexits(3).
constexpr int stillLoaded = EIO;
constexpr int nothingToEnd = ESRCH;
constexpr int nothingToPrint = 113;
constexpr int misused = 64;

int complain(const std::string& line, int exitStatus)
{
    std::fprintf(stderr, "%s\n", line.c_str());
    return exitStatus;
}

int complainWithCode(const std::string& what, int code)
{
    return complain(what + ": " + std::to_string(code) + ": " + std::generic_category().message(code), code);
}

int complain(const StandInError& error) { return complain("launchctl: " + error.message, EXIT_FAILURE); }

// <root>/Applications/Brevanta.app/Contents/StandIns/launchctl: proc(5).
std::filesystem::path developmentRoot()
{
    if (const char* const root = std::getenv("STANDIN_ROOT"); root && *root)
        return root;
    std::error_code error;
    auto path = std::filesystem::read_symlink("/proc/self/exe", error);
    for (int level = 0; level < 5; ++level)
        path = path.parent_path();
    return path;
}

class Launchd {
public:
    explicit Launchd(std::filesystem::path root)
        : m_root(std::move(root))
        , m_store(m_root)
    {
    }

    int bootstrap(const std::filesystem::path& propertyList) const
    {
        const auto properties = readLaunchProperties(propertyList);
        if (!properties || properties->label != label)
            return complainWithCode("Bootstrap failed", properties ? EINVAL : properties.error());
        int status = EXIT_SUCCESS;
        std::optional<ServiceProcess> started;
        const auto changed = m_store.changeService([&](const Service& current) -> Service {
            if (!current)
                return current;
            auto next = *current;
            if (next.refusals > 0 || next.isLoaded) {
                status = stillLoaded;
                next.refusals -= next.refusals > 0 ? 1 : 0;
                return next;
            }
            const auto process = start(properties->programArguments);
            if (!process) {
                status = process.error();
                return next;
            }
            next.isLoaded = true;
            next.process = started = *process;
            return next;
        });
        // Of a process that stands in no file nobody would ever hear again.
        if (!changed && started)
            endServiceProcess(*started);
        if (!changed)
            return complain(changed.error());
        return status == EXIT_SUCCESS ? status : complainWithCode("Bootstrap failed", status);
    }

    int bootOut(std::string_view name) const
    {
        const auto before = m_store.service();
        if (!before)
            return complain(before.error());
        if (name != label || !before->isLoaded)
            return complainWithCode("Boot-out failed", nothingToEnd);
        // Not inside of the change: it takes seconds, and others who change the file would give up.
        if (before->process)
            endServiceProcess(*before->process);
        const auto changed = m_store.changeService([&before](const Service& current) -> Service {
            // Another one may have been started meanwhile, by whoever was faster.
            if (!current || current->process != before->process)
                return current;
            auto next = *current;
            next.isLoaded = false;
            next.process.reset();
            return next;
        });
        return changed ? EXIT_SUCCESS : complain(changed.error());
    }

    int print(std::string_view name) const
    {
        const auto service = m_store.service();
        if (!service)
            return complain(service.error());
        if (name != label || !service->isLoaded)
            return complain(
                "Could not find service \"" + std::string(name) + "\" in domain for system", nothingToPrint);
        std::printf("system/%s = {\n", label.data());
        if (service->process && isRunning(*service->process))
            std::printf("\tstate = running\n\tpid = %d\n}\n", service->process->processId);
        else
            std::printf("\tstate = not running\n}\n");
        return EXIT_SUCCESS;
    }

private:
    std::expected<ServiceProcess, int> start(const std::vector<std::string>& arguments) const
    {
        const auto log = m_root / "var/log" / (std::string(label) + ".log");
        for (const auto& folder : { log.parent_path(), m_root / "var/run" }) {
            std::error_code error;
            std::filesystem::create_directories(folder, error);
            if (error)
                return std::unexpected(error.value());
        }
        return startServiceProcess(m_root, arguments, std::string(label), log);
    }

    std::filesystem::path m_root;
    StandInStore m_store;
};

int run(Words words)
{
    const Launchd launchd(developmentRoot());
    if (words.size() == 3 && words[0] == "bootstrap" && words[1] == domain)
        return launchd.bootstrap(words[2]);
    const auto prefix = std::string(domain) + '/';
    if (words.size() == 2 && words[1].starts_with(prefix)) {
        const auto name = std::string_view(words[1]).substr(prefix.size());
        if (words[0] == "bootout")
            return launchd.bootOut(name);
        if (words[0] == "print")
            return launchd.print(name);
    }
    return complain("usage: launchctl bootstrap system PLIST | bootout system/LABEL | print system/LABEL", misused);
}

}

int main(int argumentCount, char** arguments)
{
    return run(std::vector<std::string>(arguments + 1, arguments + argumentCount));
}
