#include "posix/AppLocation.h"

#include <sys/statvfs.h>

namespace brevanta {

namespace {

std::filesystem::path resolved(const std::filesystem::path& path)
{
    std::error_code error;
    auto canonical = std::filesystem::canonical(path, error);
    return error ? path : canonical;
}

std::optional<bool> isVolumeReadOnly(const std::filesystem::path& path)
{
    struct statvfs volume {};
    if (::statvfs(path.c_str(), &volume))
        return std::nullopt;
    return (volume.f_flag & ST_RDONLY) != 0;
}

}

AppLocationPolicy::Context appLocation(const std::filesystem::path& bundle,
    const std::filesystem::path& systemApplications, const std::filesystem::path& userApplications)
{
    std::error_code error;
    const bool userHasFolder = std::filesystem::is_directory(userApplications, error);
    return { .resolvedBundleURL = resolved(bundle),
        .resolvedSystemApplicationsURL = resolved(systemApplications),
        .volumeIsReadOnly = isVolumeReadOnly(bundle),
        .resolvedUserApplicationsURL = userHasFolder ? std::optional(resolved(userApplications)) : std::nullopt };
}

}
