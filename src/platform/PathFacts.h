#pragma once

#include <filesystem>

namespace brevanta {

// What is at a path, its links followed.
enum class PathKind {
    nothing,
    file,
    folder,
    socket,
    other, // A device or a pipe, or a link that leads nowhere.
    unknown, // It may not be looked at.
};

struct PathFacts {
    PathKind kind { PathKind::nothing };
    bool mayRead { false }; // By this process: access(2).
    bool mayWrite { false }; // Of a socket: whether it may be connected to.

    bool operator==(const PathFacts&) const = default;
};

// What keeps this process from making files in a folder.
enum class WriteObstacle {
    none,
    ownPermissions, // The folder is the user's own, and takes nothing.
    permissions, // It is somebody else's.
    noFolder, // Something else is in its place.
    readOnlyVolume,
    fullVolume, // Less than `leastRoom` is left, or no file can be added.
    unknown,
};

// Bytes: above anything that the client stores but for the largest lists.
inline constexpr unsigned long leastRoom = 1024UL * 1024UL;

struct FolderFacts {
    WriteObstacle obstacle { WriteObstacle::none };
    std::filesystem::path place; // The folder, or the nearest one above it that is there: the client makes the rest.

    bool operator==(const FolderFacts&) const = default;
};

}
