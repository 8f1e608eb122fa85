#include "web/RequestLog.h"

#include <algorithm>
#include <array>
#include <strings.h>
#include <utility>

namespace brevanta::web {

void RequestLog::note(nlohmann::json request)
{
    const std::string path = request.value("path", "");
    const auto count = ++m_counts[path];
    m_last = std::move(request);

    // A callback may begin to wait again, so the list is left in order first.
    std::list<Waiter> served;
    for (auto waiter = m_waiters.begin(); waiter != m_waiters.end();) {
        const auto following = std::next(waiter);
        if (waiter->path == path && waiter->count <= count)
            served.splice(served.end(), m_waiters, waiter);
        waiter = following;
    }
    for (const auto& waiter : served)
        waiter.callback();
}

std::size_t RequestLog::countOf(const std::string& path) const
{
    const auto found = m_counts.find(path);
    return found == m_counts.end() ? 0 : found->second;
}

void RequestLog::whenCounted(const std::string& path, std::size_t count, std::function<void()> callback)
{
    if (countOf(path) >= count)
        callback();
    else
        m_waiters.push_back({ path, count, std::move(callback) });
}

std::string printableHeader(const std::string& name, const std::string& value)
{
    static constexpr std::array secret { "authorization", "proxy-authorization", "cookie" };
    const bool isSecret
        = std::ranges::any_of(secret, [&](const char* other) { return !::strcasecmp(name.c_str(), other); });
    return isSecret ? std::to_string(value.size()) + " bytes" : value;
}

}
