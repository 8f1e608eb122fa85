#include "service/RemovalOnDisk.h"

#include "service/FileDescriptor.h"
#include "service/FileReplacement.h"
#include "service/JsonText.h"
#include "service/RemovalHandshake.h"

#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>

namespace brevanta::service {

static constexpr mode_t privateMode = 0600;
static constexpr mode_t sharedMode = 0644;

static std::unexpected<ServiceError> failAt(const std::filesystem::path& path, const std::error_code& error)
{
    return fail(path.string() + ": " + error.message());
}

static std::error_code lastError() { return { errno, std::generic_category() }; }

// Whether something is there, be it a link that leads nowhere.
static bool isThere(const std::filesystem::path& path)
{
    std::error_code ignored;
    return std::filesystem::exists(std::filesystem::symlink_status(path, ignored));
}

static std::string textOf(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return { std::istreambuf_iterator<char>(file), {} };
}

static std::expected<void, ServiceError> makeFolder(const std::filesystem::path& path)
{
    std::error_code error;
    std::filesystem::create_directories(path, error);
    if (error)
        return failAt(path, error);
    return {};
}

// With all that is in it. What is not there is fine.
static std::expected<void, ServiceError> removeWhole(const std::filesystem::path& path)
{
    std::error_code error;
    std::filesystem::remove_all(path, error);
    if (error)
        return failAt(path, error);
    return {};
}

// flock(2): held until the descriptor is closed, however the process ends. Nothing when somebody else holds it.
static std::expected<std::optional<FileDescriptor>, ServiceError> takeLock(
    const std::filesystem::path& path, mode_t mode)
{
    FileDescriptor descriptor(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, mode));
    if (!descriptor.isOpen())
        return failAt(path, lastError());
    if (!::flock(descriptor.get(), LOCK_EX | LOCK_NB))
        return descriptor;
    if (errno == EWOULDBLOCK || errno == EINTR)
        return std::nullopt;
    return failAt(path, lastError());
}

RemovalOnDisk::RemovalOnDisk(const std::filesystem::path& root)
    : m_supportFolder(root / "Library/Application Support/Kestrelune")
    , m_request(m_supportFolder / "removal-requested")
    , m_marker(root / "Library/Application Support/Kestrelune.removing")
    , m_propertyList(root / "Library/LaunchDaemons/com.brevanta.daemon.plist")
    , m_program(root / "Library/PrivilegedHelperTools/com.brevanta.daemon")
    , m_removalLockFile(root / "Library/Application Support/Kestrelune.removal.lock")
    , m_launchdFile(root / "var/db/launchd.json")
{
}

std::expected<RemovalOnDisk, ServiceError> RemovalOnDisk::open(const std::string& root)
{
    std::error_code error;
    const auto path = std::filesystem::canonical(root, error);
    if (error)
        return failAt(root, error);
    if (path == path.root_path())
        return fail(root + ": is the root of this machine, whose service is not to be removed");
    if (!std::filesystem::is_directory(path, error))
        return fail(root + ": is not a directory");
    return RemovalOnDisk(path);
}

std::expected<void, ServiceError> RemovalOnDisk::noteRequest(const std::optional<std::string>& account) const
{
    auto note = nlohmann::json::object();
    if (account)
        note["account"] = *account;
    if (auto made = makeFolder(m_supportFolder); !made)
        return made;
    return replaceFile(m_request.string(), jsonText(note) + "\n");
}

std::expected<void, ServiceError> RemovalOnDisk::forgetRequest() const { return removeWhole(m_request); }

bool RemovalOnDisk::isRequested() const { return isThere(m_request); }

std::optional<std::string> RemovalOnDisk::requestedAccount() const
{
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(m_request, ignored))
        return std::nullopt;
    const auto note = parseJson(textOf(m_request));
    if (!note || !note->is_object())
        return std::nullopt;
    const auto account = note->find("account");
    if (account == note->end() || !account->is_string() || !isAccount(account->get<std::string>()))
        return std::nullopt;
    return account->get<std::string>();
}

bool RemovalOnDisk::hasBegun() const { return isThere(m_marker); }

std::expected<RemovalOnDisk::Progress, ServiceError> RemovalOnDisk::erase() const
{
    if (const auto made = makeFolder(m_removalLockFile.parent_path()); !made)
        return std::unexpected(made.error());
    const auto removalLock = takeLock(m_removalLockFile, privateMode);
    if (!removalLock)
        return std::unexpected(removalLock.error());
    if (!*removalLock)
        return Progress::waiting;
    if (!isThere(m_launchdFile))
        return eraseUnderLocks();
    const auto launchdLock = takeLock(m_launchdFile.string() + ".lock", sharedMode);
    if (!launchdLock)
        return std::unexpected(launchdLock.error());
    if (!*launchdLock)
        return Progress::waiting;
    return eraseUnderLocks();
}

std::expected<RemovalOnDisk::Progress, ServiceError> RemovalOnDisk::eraseUnderLocks() const
{
    // What may turn out to be unusable comes before the marker: from there on, hardly anything but a kill leaves half a
    // removal.
    auto launchd = readLaunchd();
    if (!launchd)
        return std::unexpected(launchd.error());
    auto done = makeMarker();
    if (done)
        done = removeWhole(m_supportFolder);
    if (done && *launchd) {
        (**launchd)["loaded"] = false;
        done = replaceFile(m_launchdFile.string(), jsonText(**launchd) + "\n");
    }
    // The program and its property list go late, so that a removal that was killed can be taken up again by them.
    for (const auto* path : { &m_propertyList, &m_program, &m_marker }) {
        if (done)
            done = removeWhole(*path);
    }
    if (!done)
        return std::unexpected(done.error());
    return Progress::done;
}

std::expected<std::optional<nlohmann::json>, ServiceError> RemovalOnDisk::readLaunchd() const
{
    if (!isThere(m_launchdFile))
        return std::nullopt;
    std::error_code ignored;
    if (std::filesystem::is_regular_file(m_launchdFile, ignored)) {
        auto launchd = parseJson(textOf(m_launchdFile));
        if (launchd && launchd->is_object())
            return std::move(*launchd);
    }
    return fail(m_launchdFile.string() + ": is not what launchd is known by");
}

std::expected<void, ServiceError> RemovalOnDisk::makeMarker() const
{
    const FileDescriptor marker(::open(m_marker.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, privateMode));
    if (!marker.isOpen() && errno != EEXIST)
        return failAt(m_marker, lastError());
    return {};
}

}
