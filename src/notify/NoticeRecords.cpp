#include "notify/NoticeRecords.h"

#include "base/Text.h"

namespace brevanta {

namespace {

// Reads the members of one record; the first required member that is missing or of the wrong kind spoils it.
class RecordReader {
public:
    explicit RecordReader(json::Element element)
        : m_object(json::asObject(element))
    {
    }

    [[nodiscard]] bool isWhole() const { return m_object && m_whole; }

    std::string text(std::string_view key) { return std::string(required(key, json::asText)); }
    std::int64_t integer(std::string_view key) { return required(key, json::asInt64); }
    double number(std::string_view key) { return required(key, json::asDouble); }

    std::optional<std::string> optionalText(std::string_view key)
    {
        const auto value = member(key);
        if (!value)
            return std::nullopt;
        const auto text = json::asText(*value);
        m_whole = m_whole && text;
        return text ? std::optional<std::string>(*text) : std::nullopt;
    }

    std::optional<std::string> optionalTextOrNothing(std::string_view key)
    {
        const auto value = member(key);
        const auto text = value ? json::asText(*value) : std::nullopt;
        return text ? std::optional<std::string>(*text) : std::nullopt;
    }

    // Text or an integer; blank text names nothing.
    std::optional<std::string> optionalIdentifier(std::string_view key)
    {
        const auto value = member(key);
        if (value) {
            if (const auto integer = json::asInt64(*value))
                return std::to_string(*integer);
        }
        auto text = optionalText(key);
        return text && !isBlank(*text) ? std::move(text) : std::nullopt;
    }

    std::string identifier(std::string_view key)
    {
        auto identifier = optionalIdentifier(key);
        m_whole = m_whole && identifier;
        return std::move(identifier).value_or(std::string {});
    }

    template <typename Enum> Enum oneOf(std::string_view key, std::initializer_list<std::pair<const char*, Enum>> names)
    {
        const auto name = text(key);
        for (const auto& [known, value] : names) {
            if (name == known)
                return value;
        }
        m_whole = false;
        return {};
    }

private:
    std::optional<json::Element> member(std::string_view key) const
    {
        return m_object ? json::member(*m_object, key) : std::nullopt;
    }

    template <typename Value> Value required(std::string_view key, std::optional<Value> (*convert)(json::Element))
    {
        const auto element = member(key);
        const auto value = element ? convert(*element) : std::nullopt;
        m_whole = m_whole && value;
        return value.value_or(Value {});
    }

    std::optional<json::Object> m_object;
    bool m_whole { true };
};

template <typename Record> std::optional<Record> ifWhole(const RecordReader& reader, Record record)
{
    return reader.isWhole() ? std::optional(std::move(record)) : std::nullopt;
}

}

std::optional<PendingReminder> PendingReminder::decode(json::Element element)
{
    RecordReader reader(element);
    PendingReminder record {
        .eventId = reader.integer("event_id"),
        .taskId = reader.text("task_id"),
        .kind = reader.oneOf<Kind>("kind", { { "fire", Kind::fire }, { "overdue", Kind::overdue } }),
        .title = reader.text("title"),
        .notificationTitle = reader.text("notification_title"),
        .body = reader.text("body"),
    };
    if (isBlank(record.notificationTitle) || isBlank(record.body))
        return std::nullopt;
    return ifWhole(reader, std::move(record));
}

std::optional<PendingLocalAlert> PendingLocalAlert::decode(json::Element element)
{
    RecordReader reader(element);
    PendingLocalAlert record {
        .alertId = reader.integer("alert_id"),
        .kind = reader.text("kind"),
        .notificationTitle = reader.text("notification_title"),
        .body = reader.text("body"),
        .soundPrefix = reader.text("sound_prefix"),
        .expiresInSeconds = reader.number("expires_in_seconds"),
        .open = reader.optionalTextOrNothing("open"),
    };
    if (isBlank(record.notificationTitle) && isBlank(record.body))
        return std::nullopt;
    return ifWhole(reader, std::move(record));
}

std::optional<PendingAppRejection> PendingAppRejection::decode(json::Element element)
{
    RecordReader reader(element);
    return ifWhole(reader,
        PendingAppRejection {
            .eventId = reader.identifier("event_id"),
            .taskId = reader.optionalIdentifier("task_id"),
            .taskTitle = reader.optionalText("task_title"),
            .closingSessionId = reader.optionalIdentifier("closing_session_id"),
            .reason = reader.text("reason"),
            .kind = reader.oneOf<Kind>(
                "kind", { { "rejected_open", Kind::rejectedOpen }, { "session_ended", Kind::sessionEnded } }),
        });
}

std::optional<PendingTaskResume> PendingTaskResume::decode(json::Element element)
{
    RecordReader reader(element);
    return ifWhole(reader,
        PendingTaskResume {
            .eventId = reader.identifier("event_id"),
            .taskId = reader.optionalIdentifier("task_id"),
            .taskTitle = reader.optionalText("task_title"),
            .closingSessionId = reader.optionalIdentifier("closing_session_id"),
        });
}

}
