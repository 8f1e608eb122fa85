#pragma once

#include <cstddef>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace brevanta::service {

// Which requests have come in. What is none of the five types counts as "other".
class RequestLog {
public:
    RequestLog();

    void note(std::string_view type, std::string line);

    [[nodiscard]] std::size_t countOf(std::string_view type) const;
    [[nodiscard]] nlohmann::json counts() const { return m_counts; }
    [[nodiscard]] const std::string& lastLine() const { return m_lastLine; }

private:
    std::map<std::string, std::size_t> m_counts;
    std::string m_lastLine;
};

enum class LogDetail { none, redacted, full };

// One printable line about a request. Redacted, it shows only how long a token is.
[[nodiscard]] std::string describeRequest(const std::string& line, LogDetail);

}
