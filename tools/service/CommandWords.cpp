#include "service/CommandWords.h"

#include <algorithm>

namespace brevanta::service {

static constexpr std::string_view blanks = " \t\r\n";

std::string_view CommandWords::trim(std::string_view text)
{
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::optional<std::string> CommandWords::next()
{
    if (m_rest.empty())
        return std::nullopt;
    const auto end = std::min(m_rest.find_first_of(blanks), m_rest.size());
    std::string word(m_rest.substr(0, end));
    m_rest = trim(m_rest.substr(end));
    return word;
}

std::vector<std::string> CommandWords::remaining()
{
    std::vector<std::string> words;
    while (auto word = next())
        words.push_back(std::move(*word));
    return words;
}

bool CommandWords::isNext(std::string_view word) const { return CommandWords(*this).next() == word; }

}
