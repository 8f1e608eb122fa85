#include "base/JsonWriter.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>

namespace brevanta::json {

namespace {

// The first byte of U+2028 and U+2029 is looked at more closely; it begins many other characters too.
constexpr char lineSeparatorLead = '\xE2';

bool mayNeedEscape(char c)
{
    return static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\' || c == lineSeparatorLead;
}

void appendUnicodeEscape(std::string& out, unsigned codeUnit)
{
    constexpr std::string_view digits = "0123456789abcdef";
    out += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4)
        out.push_back(digits[(codeUnit >> static_cast<unsigned>(shift)) & 0xFU]);
}

// How many bytes were read.
std::size_t appendEscaped(std::string& out, std::string_view rest)
{
    const char c = rest.front();
    if (c == lineSeparatorLead) {
        if (rest.starts_with("\u2028") || rest.starts_with("\u2029")) {
            appendUnicodeEscape(out, rest.starts_with("\u2028") ? 0x2028 : 0x2029);
            return 3;
        }
        out.push_back(c);
    } else if (c == '"' || c == '\\') {
        out.push_back('\\');
        out.push_back(c);
    } else if (c == '\n') {
        out += "\\n";
    } else {
        appendUnicodeEscape(out, static_cast<unsigned char>(c));
    }
    return 1;
}

}

void appendString(std::string& out, std::string_view text)
{
    out.push_back('"');
    while (!text.empty()) {
        const auto plain = static_cast<std::size_t>(std::ranges::find_if(text, mayNeedEscape) - text.begin());
        out.append(text.substr(0, plain));
        text.remove_prefix(plain);
        if (!text.empty())
            text.remove_prefix(appendEscaped(out, text));
    }
    out.push_back('"');
}

void appendStringArray(std::string& out, std::span<const std::string_view> texts)
{
    std::size_t size = out.size() + 2;
    for (const auto text : texts)
        size += text.size() + 3;
    out.reserve(size);
    out.push_back('[');
    for (bool isFirst = true; const auto text : texts) {
        if (!isFirst)
            out.push_back(',');
        isFirst = false;
        appendString(out, text);
    }
    out.push_back(']');
}

void appendNumber(std::string& out, double number)
{
    if (!std::isfinite(number)) {
        out += "null";
        return;
    }
    std::array<char, 32> digits {};
    const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), number);
    out.append(digits.data(), error == std::errc {} ? end : digits.data());
}

std::string scriptText(const Json& value)
{
    const auto text = value.dump(-1, ' ', false, Json::error_handler_t::replace);
    std::string script;
    script.reserve(text.size());
    std::string_view rest = text;
    while (!rest.empty()) {
        // Only inside of texts does a JSON value have such bytes.
        const auto lead = std::min(rest.find(lineSeparatorLead), rest.size());
        script += rest.substr(0, lead);
        rest.remove_prefix(lead);
        if (!rest.empty())
            rest.remove_prefix(appendEscaped(script, rest));
    }
    return script;
}

}
