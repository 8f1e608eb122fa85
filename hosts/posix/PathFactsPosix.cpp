#include "posix/PathFactsPosix.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace brevanta {

namespace {

bool may(const std::filesystem::path& path, int mode) { return !::faccessat(AT_FDCWD, path.c_str(), mode, AT_EACCESS); }

PathKind kindOf(mode_t mode)
{
    if (S_ISREG(mode))
        return PathKind::file;
    if (S_ISDIR(mode))
        return PathKind::folder;
    return S_ISSOCK(mode) ? PathKind::socket : PathKind::other;
}

// A path through something that is no folder leads nowhere, too.
bool isMissing(int code) { return code == ENOENT || code == ENOTDIR; }

bool isFull(const struct statvfs& volume)
{
    // What knows no blocks or no files is no disk that could be full.
    const auto blocks = ::geteuid() == 0 ? volume.f_bfree : volume.f_bavail; // Some are kept back for root.
    const auto files = ::geteuid() == 0 ? volume.f_ffree : volume.f_favail;
    const bool hasNoRoom = volume.f_blocks > 0 && volume.f_frsize > 0 && blocks < leastRoom / volume.f_frsize;
    return hasNoRoom || (volume.f_files > 0 && files == 0);
}

WriteObstacle obstacleIn(const std::filesystem::path& folder, const struct stat& status)
{
    if (!S_ISDIR(status.st_mode))
        return WriteObstacle::noFolder;
    struct statvfs volume {};
    if (::statvfs(folder.c_str(), &volume))
        return WriteObstacle::unknown;
    if ((volume.f_flag & ST_RDONLY) != 0)
        return WriteObstacle::readOnlyVolume;
    if (!may(folder, W_OK | X_OK))
        return status.st_uid == ::geteuid() ? WriteObstacle::ownPermissions : WriteObstacle::permissions;
    return isFull(volume) ? WriteObstacle::fullVolume : WriteObstacle::none;
}

}

PathFacts pathFacts(const std::filesystem::path& path)
{
    struct stat status {};
    if (!::stat(path.c_str(), &status))
        return { .kind = kindOf(status.st_mode), .mayRead = may(path, R_OK), .mayWrite = may(path, W_OK) };
    if (!isMissing(errno))
        return { .kind = PathKind::unknown };
    const bool isLink = !::lstat(path.c_str(), &status);
    return { .kind = isLink ? PathKind::other : PathKind::nothing };
}

FolderFacts folderFacts(const std::filesystem::path& folder)
{
    auto place = folder;
    struct stat status {};
    while (::stat(place.c_str(), &status)) {
        if (!isMissing(errno) || !place.has_relative_path())
            return { .obstacle = isMissing(errno) ? WriteObstacle::unknown : WriteObstacle::permissions,
                .place = place };
        // A link that leads nowhere is in the folder's way.
        if (!::lstat(place.c_str(), &status))
            return { .obstacle = WriteObstacle::noFolder, .place = place };
        place = place.parent_path();
    }
    return { .obstacle = obstacleIn(place, status), .place = place };
}

}
