#include "gtk/standin/MemberReader.h"

#include <cstdint>
#include <limits>

namespace brevanta {

MemberReader::MemberReader(const nlohmann::json& value)
    : m_value(value)
{
    if (!value.is_object())
        m_error = "is no object";
}

void MemberReader::read(std::string_view key, bool& target)
{
    const auto* const member = take(key);
    if (!member)
        return;
    if (member->is_boolean())
        target = member->get<bool>();
    else
        refuse(key);
}

void MemberReader::read(std::string_view key, int& target) { readNumber(key, target); }

void MemberReader::read(std::string_view key, std::int64_t& target) { readNumber(key, target); }

template <typename Number> void MemberReader::readNumber(std::string_view key, Number& target)
{
    const auto* const member = take(key);
    if (!member)
        return;
    // The parser gives every number without a sign as unsigned; one above int64_t turns negative here.
    const auto number = member->is_number_integer() ? member->get<std::int64_t>() : 0;
    if (number > 0 && number <= std::numeric_limits<Number>::max())
        target = static_cast<Number>(number);
    else
        refuse(key);
}

void MemberReader::read(std::string_view key, std::optional<std::string>& target)
{
    const auto* const member = take(key);
    if (!member)
        return;
    if (member->is_string())
        target = member->get<std::string>();
    else
        refuse(key);
}

std::expected<void, StandInError> MemberReader::end() const
{
    if (!m_error.empty())
        return standInError(m_error);
    if (m_taken != m_value.size())
        return standInError("has an unknown member");
    return {};
}

const nlohmann::json* MemberReader::take(std::string_view key)
{
    if (!m_value.is_object())
        return nullptr;
    const auto member = m_value.find(key);
    if (member == m_value.end())
        return nullptr;
    ++m_taken;
    return &*member;
}

void MemberReader::refuse(std::string_view key) { m_error = std::string(key) + " has a value that it cannot have"; }

std::expected<nlohmann::json, StandInError> parseStandIn(std::string_view text)
{
    auto value = nlohmann::json::parse(text, nullptr, false);
    if (!value.is_object())
        return standInError("holds no JSON object");
    return value;
}

std::string standInText(const nlohmann::json& value)
{
    return value.dump(4, ' ', false, nlohmann::json::error_handler_t::replace) + '\n';
}

}
