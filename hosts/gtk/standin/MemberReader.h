#pragma once

#include "gtk/standin/NamedValues.h"
#include "gtk/standin/StandInError.h"

#include <cstdint>
#include <expected>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace brevanta {

// Takes a JSON object apart, member by member. A member that is absent leaves its target as it is; one that has another
// type, or that nobody takes, is an error, which `end` tells.
class MemberReader {
public:
    // `value` outlives this object.
    explicit MemberReader(const nlohmann::json& value);

    void read(std::string_view key, bool& target);
    void read(std::string_view key, int& target); // Above 0.
    void read(std::string_view key, std::int64_t& target); // Above 0.
    void read(std::string_view key, std::optional<std::string>& target);

    template <typename Enum, std::size_t count>
    void read(std::string_view key, const std::array<NamedValue<Enum>, count>& names, Enum& target)
    {
        const auto* const member = take(key);
        if (!member)
            return;
        const auto value
            = member->is_string() ? valueNamed(names, member->get_ref<const std::string&>()) : std::nullopt;
        if (value)
            target = *value;
        else
            refuse(key);
    }

    // The member itself, for `decode`, which gives an error or nothing.
    template <typename Decode> void readWith(std::string_view key, const Decode& decode)
    {
        const auto* const member = take(key);
        if (!member)
            return;
        if (const std::expected<void, StandInError> decoded = decode(*member); !decoded)
            m_error = std::string(key) + ": " + decoded.error().message;
    }

    [[nodiscard]] std::expected<void, StandInError> end() const;

    // The same, with what has been read.
    template <typename State> [[nodiscard]] std::expected<State, StandInError> endWith(State state) const
    {
        auto ended = end();
        if (!ended)
            return std::unexpected(std::move(ended.error()));
        return state;
    }

private:
    template <typename Number> void readNumber(std::string_view key, Number& target);
    const nlohmann::json* take(std::string_view key);
    void refuse(std::string_view key);

    const nlohmann::json& m_value;
    std::size_t m_taken { 0 };
    std::string m_error;
};

// The JSON object that a file holds; the error never quotes its bytes.
[[nodiscard]] std::expected<nlohmann::json, StandInError> parseStandIn(std::string_view text);

// With indentation and a newline at the end. Text that is not UTF-8 gets replacement characters.
[[nodiscard]] std::string standInText(const nlohmann::json& value);

}
