#pragma once

#include <expected>
#include <functional>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>

namespace brevanta {

// The texts of one language by their keys. A text may hold placeholders such as "{task}".
using NoticeTable = std::map<std::string, std::string, std::less<>>;

enum class NoticeTableError {
    malformedJson, // Also when the bytes are not UTF-8.
    noObject,
    entryIsNoText,
};

// In English, for the log.
[[nodiscard]] std::string_view describe(NoticeTableError error);

// Reads a table from a JSON object whose members are all text (RFC 8259). The last one counts when a key is repeated.
[[nodiscard]] std::expected<NoticeTable, NoticeTableError> parseNoticeTable(std::string_view json);

// What takes the place of "{placeholder}" in a text.
struct NoticeValue {
    std::string_view placeholder;
    std::string_view value;
};

// The words of the client's own notices in one language, with English behind it. Immutable; any thread.
class NoticeCopy {
public:
    NoticeCopy(NoticeTable language, NoticeTable english);

    // The text of the key, or the key itself when neither language has it. Values go in as they are: braces in them
    // are no placeholders. A placeholder without a value stays as it stands.
    [[nodiscard]] std::string text(std::string_view key, std::initializer_list<NoticeValue> values = {}) const;

private:
    NoticeTable m_language;
    NoticeTable m_english;
};

// Gives the words in the language of the moment, since the user may choose another one at any time. What it refers to
// stays for as long as its owner.
using CurrentNoticeCopy = std::function<const NoticeCopy&()>;

}
