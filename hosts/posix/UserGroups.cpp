#include "posix/UserGroups.h"

#include <algorithm>
#include <grp.h>
#include <unistd.h>
#include <vector>

namespace brevanta {

std::optional<bool> isInGroup(const char* name)
{
    const auto* const group = ::getgrnam(name);
    const int count = ::getgroups(0, nullptr);
    if (!group || count < 0)
        return std::nullopt;
    const auto identifier = group->gr_gid;
    std::vector<gid_t> groups(static_cast<std::size_t>(count));
    const int filled = ::getgroups(count, groups.data());
    if (filled < 0)
        return std::nullopt;
    groups.resize(static_cast<std::size_t>(filled));
    return ::getegid() == identifier || std::ranges::find(groups, identifier) != groups.end();
}

}
