#include "notify/NoticeCopy.h"

#include "base/Json.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

namespace brevanta {

namespace {

// One pass from left to right, so that what a value holds is never looked at.
std::string substituted(std::string_view text, std::initializer_list<NoticeValue> values)
{
    std::string result;
    while (!text.empty()) {
        const auto open = text.find('{');
        result += text.substr(0, open);
        if (open == std::string_view::npos)
            break;
        text.remove_prefix(open);
        const auto fits = [text](const NoticeValue& value) {
            return text.substr(1).starts_with(value.placeholder)
                && text.substr(1 + value.placeholder.size()).starts_with('}');
        };
        if (const auto* const value = std::ranges::find_if(values, fits); value != values.end()) {
            result += value->value;
            text.remove_prefix(value->placeholder.size() + 2);
        } else {
            result += '{';
            text.remove_prefix(1);
        }
    }
    return result;
}

}

std::string_view describe(NoticeTableError error)
{
    switch (error) {
    case NoticeTableError::malformedJson:
        return "malformed JSON";
    case NoticeTableError::noObject:
        return "no JSON object";
    case NoticeTableError::entryIsNoText:
        break;
    }
    return "an entry that is no text";
}

std::expected<NoticeTable, NoticeTableError> parseNoticeTable(std::string_view json)
{
    const auto parsed = Json::parse(json, nullptr, /* allow_exceptions = */ false);
    if (parsed.is_discarded())
        return std::unexpected(NoticeTableError::malformedJson);
    if (!parsed.is_object())
        return std::unexpected(NoticeTableError::noObject);
    NoticeTable table;
    for (const auto& [key, value] : parsed.items()) {
        if (!value.is_string())
            return std::unexpected(NoticeTableError::entryIsNoText);
        table.emplace(key, value.get<std::string>());
    }
    return table;
}

NoticeCopy::NoticeCopy(NoticeTable language, NoticeTable english)
    : m_language(std::move(language))
    , m_english(std::move(english))
{
}

std::string NoticeCopy::text(std::string_view key, std::initializer_list<NoticeValue> values) const
{
    for (const auto* const table : { &m_language, &m_english }) {
        if (const auto found = table->find(key); found != table->end())
            return substituted(found->second, values);
    }
    return std::string(key);
}

}
