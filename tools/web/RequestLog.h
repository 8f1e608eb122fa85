#pragma once

#include <cstddef>
#include <functional>
#include <list>
#include <map>
#include <nlohmann/json.hpp>
#include <string>

namespace brevanta::web {

// Which requests have come in, by path; and who waits for more of them.
class RequestLog {
public:
    // The request is a JSON object with `method`, `path` and `headers`, secrets already taken out.
    void note(nlohmann::json request);

    [[nodiscard]] std::size_t countOf(const std::string& path) const;
    [[nodiscard]] nlohmann::json counts() const { return m_counts; }
    // An empty object before the first request.
    [[nodiscard]] const nlohmann::json& last() const { return m_last; }

    // Calls back once so many requests for the path have come in altogether, at once if that is so already.
    void whenCounted(const std::string& path, std::size_t count, std::function<void()>);

private:
    struct Waiter {
        std::string path;
        std::size_t count;
        std::function<void()> callback;
    };

    std::map<std::string, std::size_t> m_counts;
    nlohmann::json m_last = nlohmann::json::object();
    std::list<Waiter> m_waiters;
};

// The headers that carry credentials show only how long those are.
[[nodiscard]] std::string printableHeader(const std::string& name, const std::string& value);

}
