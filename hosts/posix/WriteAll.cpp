#include "posix/WriteAll.h"

#include <cerrno>
#include <unistd.h>

namespace brevanta {

bool writeAll(int descriptor, std::string_view bytes)
{
    while (!bytes.empty()) {
        const auto written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

}
