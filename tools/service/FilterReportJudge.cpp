#include "service/FilterReportJudge.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace brevanta::service {

static bool isWellFormed(const nlohmann::json& report)
{
    static constexpr std::array<std::string_view, 5> states { "checking", "cantCheck", "awaitingApproval", "off",
        "on" };
    if (!report.is_object() || report.size() != 4)
        return false;
    const auto schema = report.find("schema");
    const auto state = report.find("state");
    const auto observedAt = report.find("observed_at_ns");
    const auto sentAt = report.find("sent_at_ns");
    if (schema == report.end() || !schema->is_number_integer() || *schema != 1)
        return false;
    if (state == report.end() || !state->is_string()
        || std::ranges::find(states, state->get_ref<const std::string&>()) == states.end())
        return false;
    return observedAt != report.end() && observedAt->is_number_unsigned() && sentAt != report.end()
        && sentAt->is_number_unsigned();
}

std::optional<std::string> FilterReportJudge::answer(const nlohmann::json& report)
{
    if (m_mode == Mode::silent)
        return std::nullopt;
    if (m_mode == Mode::scripted)
        return m_scriptedAnswer;
    if (!isWellFormed(report))
        return "malformed";
    const auto sentAt = report["sent_at_ns"].get<std::uint64_t>();
    if (m_lastSentAt && sentAt <= *m_lastSentAt)
        return "out_of_order";
    m_lastSentAt = sentAt;
    return "accepted";
}

void FilterReportJudge::judge() { m_mode = Mode::judging; }

void FilterReportJudge::alwaysAnswer(std::string text)
{
    m_mode = Mode::scripted;
    m_scriptedAnswer = std::move(text);
}

void FilterReportJudge::keepSilent() { m_mode = Mode::silent; }

}
