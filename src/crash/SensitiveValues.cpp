#include "crash/SensitiveValues.h"

#include "base/Text.h"
#include "crash/ReportScrubber.h"

#include <algorithm>
#include <array>

namespace brevanta {

namespace {

using namespace std::string_view_literals;

// Parts of keys, without capitals and punctuation.
constexpr std::array secretWords { "token"sv, "password"sv, "passwd"sv, "passphrase"sv, "passcode"sv, "secret"sv,
    "authorization"sv, "cookie"sv, "credential"sv, "apikey"sv, "accesskey"sv, "privatekey"sv, "sessionid"sv, "jwt"sv,
    "csrf"sv, "deviceid"sv };
// Of these the values may be more than one word.
constexpr std::array lineWords { "password"sv, "passwd"sv, "passphrase"sv, "secret"sv, "authorization"sv, "cookie"sv,
    "credential"sv };
// The first word of a value that consists of two (RFC 9110, section 11.4).
constexpr std::array schemes { "basic"sv, "bearer"sv, "digest"sv, "token"sv };

constexpr std::size_t mostClosers = 8; // Quotes, escapes and brackets between a key and its separator.

bool isKeyCharacter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '-';
}

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

bool isOneOf(char c, std::string_view characters) { return characters.find(c) != std::string_view::npos; }

bool endsBareValue(char c) { return isSpace(c) || isOneOf(c, ",;&\"'<>)}]|`"); }

bool endsLine(char c) { return c == '\n' || c == '\r'; }

std::string normalized(std::string_view key)
{
    auto name = lowerCased(key);
    std::erase_if(name, [](char c) { return isOneOf(c, "_-. "); });
    return name;
}

template <std::size_t size> bool containsOneOf(std::string_view name, const std::array<std::string_view, size>& words)
{
    return std::ranges::any_of(words, [&](auto word) { return name.contains(word); });
}

bool isSecretName(std::string_view name)
{
    return name == "auth" || name == "bearer" || containsOneOf(name, secretWords);
}

// Reads through the text once, from the left to the right.
class Reader {
public:
    explicit Reader(std::string_view text)
        : m_text(text)
    {
    }

    std::string read()
    {
        while (m_at < m_text.size()) {
            if (isKeyCharacter(m_text[m_at]))
                readWord();
            else
                ++m_at;
        }
        m_out.append(m_text.substr(m_written));
        return std::move(m_out);
    }

private:
    void readWord()
    {
        const auto word = m_text.substr(m_at, end(m_at, [](char c) { return !isKeyCharacter(c); }) - m_at);
        m_at += word.size();
        const auto name = normalized(word);
        if (!isSecretName(name))
            return;
        const auto value = valueBehind(m_at, word.starts_with("--"));
        if (value)
            removeValue(value, containsOneOf(name, lineWords));
    }

    // Where the value of the key that ends at `at` begins; 0, where none can be, when it has no value.
    [[nodiscard]] std::size_t valueBehind(std::size_t at, bool isOption) const
    {
        const auto closers = std::min(end(at, [](char c) { return !isOneOf(c, "\\\"'])"); }), at + mostClosers);
        const auto separator = end(closers, [](char c) { return !isSpace(c); });
        auto value = separator;
        if (const auto rest = m_text.substr(separator); isEncodedSeparator(rest))
            value += encodedSize;
        else if (!rest.starts_with("::")) // In C++ a name goes on behind it.
            value = end(separator, [](char c) { return !isOneOf(c, ":=>"); });
        if (value == separator && isOption && at != separator)
            value = end(separator, [](char c) { return c != ','; });
        else if (value == separator || m_text[separator] == '>')
            return 0;
        value = end(value, [](char c) { return !isSpace(c); });
        return value < m_text.size() ? value : 0;
    }

    void removeValue(std::size_t begin, bool isLine)
    {
        auto close = begin;
        while (close < m_text.size() && m_text[close] == '\\')
            ++close;
        if (close < m_text.size() && isOneOf(m_text[close], "\"'"))
            return remove(close + 1, closingQuote(close + 1, m_text[close], close - begin));
        close = unquotedEnd(begin, isLine);
        const auto word = lowerCased(m_text.substr(begin, std::min(close - begin, longestScheme)));
        if (!isLine && std::ranges::find(schemes, word) != schemes.end())
            close = unquotedEnd(end(close, [](char c) { return c != ' '; }), isLine);
        remove(begin, close);
    }

    [[nodiscard]] std::size_t unquotedEnd(std::size_t begin, bool isLine) const
    {
        const bool isBracketed = begin < m_text.size() && isOneOf(m_text[begin], "[{(<");
        const auto close = isBracketed ? closingBracket(begin) : begin;
        if (isLine)
            return end(close, endsLine);
        return isBracketed ? close : end(begin, endsBareValue);
    }

    // A quote inside of the value has more backslashes before it than the one that began it.
    [[nodiscard]] std::size_t closingQuote(std::size_t begin, char quote, std::size_t backslashes) const
    {
        std::size_t run = 0;
        for (auto at = begin; at < m_text.size(); ++at) {
            if (m_text[at] == quote && run <= backslashes)
                return at - run;
            run = m_text[at] == '\\' ? run + 1 : 0;
        }
        return m_text.size();
    }

    // Behind the bracket that closes the one at `begin`; brackets in strings count as nothing.
    [[nodiscard]] std::size_t closingBracket(std::size_t begin) const
    {
        const bool isAngle = m_text[begin] == '<';
        const auto opening = isAngle ? "<"sv : "[{("sv;
        const auto closing = isAngle ? ">"sv : "]})"sv;
        std::size_t depth = 0;
        bool isInString = false;
        for (auto at = begin; at < m_text.size(); ++at) {
            const char c = m_text[at];
            if (c == '"' && m_text[at - 1] != '\\')
                isInString = !isInString;
            else if (!isInString && isOneOf(c, opening))
                ++depth;
            else if (!isInString && isOneOf(c, closing) && --depth == 0)
                return at + 1;
        }
        return m_text.size();
    }

    void remove(std::size_t begin, std::size_t end)
    {
        m_at = end;
        if (begin >= end)
            return;
        m_out.append(m_text.substr(m_written, begin - m_written));
        m_out.append(removedFromReport);
        m_written = end;
    }

    template <typename Predicate> [[nodiscard]] std::size_t end(std::size_t begin, Predicate ends) const
    {
        const auto rest = m_text.substr(std::min(begin, m_text.size()));
        return static_cast<std::size_t>(std::ranges::find_if(rest, ends) - rest.begin())
            + (m_text.size() - rest.size());
    }

    static constexpr std::size_t encodedSize = 3;
    static constexpr std::size_t longestScheme = 8;

    [[nodiscard]] static bool isEncodedSeparator(std::string_view text)
    {
        const auto code = lowerCased(text.substr(0, encodedSize));
        return code == "%3d" || code == "%3a";
    }

    std::string_view m_text;
    std::string m_out;
    std::size_t m_at { 0 };
    std::size_t m_written { 0 }; // All before has been dealt with.
};

}

bool isSecretKey(std::string_view key) { return isSecretName(normalized(key)); }

std::string withoutSecretValues(std::string_view text) { return Reader(text).read(); }

}
