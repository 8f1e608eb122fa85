// Replacing the shared file, against the least that puts the same bytes in its place.
#include "bench/Measure.h"
#include "bench/Reports.h"
#include "bench/SharedMemoryFolder.h"
#include "posix/FileDescriptor.h"
#include "posix/FileStorePosix.h"
#include "posix/WriteAll.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>

namespace brevanta::bench {

namespace {

void writeBarely(const std::string& temporary, const std::string& target, const std::string& contents)
{
    const FileDescriptor file(::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    if (!file || !writeAll(file.get(), contents) || std::rename(temporary.c_str(), target.c_str()))
        std::abort();
}

}

void reportWriteStage(std::size_t entries)
{
    constexpr std::size_t bytesOfAnEntry = 25;
    const SharedMemoryFolder folder;
    const std::string contents(entries * bytesOfAnEntry, 'x');
    const auto target = folder.path() / "state";
    const auto bareTarget = (folder.path() / "bare").string();
    const auto bareTemporary = bareTarget + ".tmp";
    FileStorePosix files;
    const auto seconds = measureBoth(
        [&] {
            if (!files.replace(target, contents, FilePermissions::ownerOnly))
                std::abort();
        },
        [&] { writeBarely(bareTemporary, bareTarget, contents); });
    printRow("replace the file on tmpfs / open, write and rename", entries, seconds, "at most 1.2");
}

}
