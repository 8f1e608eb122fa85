#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace brevanta::service {

// Answers the content filter's health report that a status request may carry.
class FilterReportJudge {
public:
    // "accepted" for a well-formed report that is newer than the one before; otherwise "malformed" or "out_of_order". A
    // scripted answer replaces all three; silence means no answer at all.
    [[nodiscard]] std::optional<std::string> answer(const nlohmann::json& report);

    void judge();
    void alwaysAnswer(std::string);
    void keepSilent();

private:
    enum class Mode { judging, scripted, silent };

    Mode m_mode = Mode::judging;
    std::string m_scriptedAnswer;
    std::optional<std::uint64_t> m_lastSentAt;
};

}
