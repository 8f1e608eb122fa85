#include "service/Scenario.h"

#include "service/CommandWords.h"
#include "service/NumberText.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace brevanta::service {

static std::expected<Scenario::Step, ServiceError> parseStep(std::string_view line)
{
    Scenario::Step step;
    CommandWords words(line);
    if (words.isNext("at")) {
        (void)words.next();
        const auto seconds = parseNumber(words.next().value_or(""));
        if (!seconds || *seconds < 0)
            return fail("usage: at SECONDS COMMAND");
        step.at = *seconds;
    }
    const auto text = words.rest();
    if (isWaitingCommand(text))
        return fail("a scenario cannot await anything");
    auto command = parseCommand(text);
    if (!command)
        return std::unexpected(command.error());
    step.command = std::move(*command);
    return step;
}

std::expected<Scenario, ServiceError> Scenario::parse(const std::string& fileName, std::string_view text)
{
    Scenario scenario;
    std::size_t lineNumber = 0;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        const auto line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        ++lineNumber;
        if (const auto first = line.find_first_not_of(" \t\r"); first == std::string_view::npos || line[first] == '#')
            continue;
        auto step = parseStep(line);
        const auto origin = fileName + ':' + std::to_string(lineNumber);
        if (!step)
            return fail(origin + ": " + step.error().message);
        step->origin = origin;
        // Steps of the same time stay in the order of their lines.
        const auto place = std::ranges::upper_bound(scenario.m_steps, step->at, {}, &Step::at);
        scenario.m_steps.insert(place, std::move(*step));
    }
    return scenario;
}

std::expected<Scenario, ServiceError> Scenario::load(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::string text { std::istreambuf_iterator<char>(file), {} };
    if (!file.is_open() || file.bad())
        return fail(path + ": cannot be read");
    return parse(path, text);
}

std::optional<double> Scenario::nextAt() const
{
    if (m_next == m_steps.size())
        return std::nullopt;
    return m_steps[m_next].at;
}

const Scenario::Step* Scenario::takeDue(double now)
{
    if (m_next == m_steps.size() || m_steps[m_next].at > now)
        return nullptr;
    return &m_steps[m_next++];
}

}
