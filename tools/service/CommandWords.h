#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace brevanta::service {

// Reads a command line word by word; what is left can be taken as it stands, since titles, reasons and JSON hold
// spaces.
class CommandWords {
public:
    explicit CommandWords(std::string_view line)
        : m_rest(trim(line))
    {
    }

    [[nodiscard]] std::optional<std::string> next();
    [[nodiscard]] std::string rest() { return std::string(std::exchange(m_rest, {})); }
    [[nodiscard]] std::vector<std::string> remaining();
    [[nodiscard]] bool isAtEnd() const { return m_rest.empty(); }
    [[nodiscard]] bool isNext(std::string_view word) const;

private:
    static std::string_view trim(std::string_view);

    std::string_view m_rest;
};

}
