#include "base/JsonWriter.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <nlohmann/json.hpp>
#include <utility>

namespace brevanta::json {

namespace {

// The first byte of U+2028 and U+2029 is looked at more closely; it begins many other characters too.
constexpr char lineSeparatorLead = '\xE2';

bool mayNeedEscape(char c)
{
    return static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\' || c == lineSeparatorLead;
}

// Sixteen bytes at a time, in whatever vector registers there are: an extension that GCC and Clang share.
using Block [[gnu::vector_size(16)]] = unsigned char;
using BlockFlags = decltype(std::declval<Block>() < std::declval<Block>());
constexpr std::size_t blockSize = sizeof(Block);
constexpr std::size_t halfBlockSize = blockSize / 2;

Block load(const char* from)
{
    Block block;
    std::memcpy(&block, from, blockSize);
    return block;
}

void store(char* to, Block block) { std::memcpy(to, &block, blockSize); }

// As `mayNeedEscape` for each byte.
BlockFlags mayNeedEscape(Block block)
{
    constexpr Block none {};
    constexpr auto lead = static_cast<unsigned char>(lineSeparatorLead);
    return (block < none + 0x20) | (block == none + '"') | (block == none + '\\') | (block == none + lead);
}

bool any(BlockFlags flags)
{
    const auto halves = std::bit_cast<std::array<std::uint64_t, 2>>(flags);
    return (halves[0] | halves[1]) != 0;
}

// Copies the text and tells whether it may stand as it is; where it may not, what was copied is worth nothing. Writes
// exactly as many bytes as the text has: the last piece overlaps the one before.
inline bool copyIfPlain(char* to, std::string_view text)
{
    const auto* const from = text.data();
    const auto size = text.size();
    if (size >= blockSize) {
        const auto first = load(from);
        const auto last = load(from + size - blockSize);
        auto flags = mayNeedEscape(first) | mayNeedEscape(last);
        store(to, first);
        for (auto at = blockSize; at + blockSize < size; at += blockSize) {
            const auto next = load(from + at);
            flags |= mayNeedEscape(next);
            store(to + at, next);
        }
        store(to + size - blockSize, last);
        return !any(flags);
    }
    if (size >= halfBlockSize) {
        std::array<char, blockSize> both;
        std::memcpy(both.data(), from, halfBlockSize);
        std::memcpy(both.data() + halfBlockSize, from + size - halfBlockSize, halfBlockSize);
        std::memcpy(to, both.data(), halfBlockSize);
        std::memcpy(to + size - halfBlockSize, both.data() + halfBlockSize, halfBlockSize);
        return !any(mayNeedEscape(load(both.data())));
    }
    bool isPlain = true;
    for (std::size_t index = 0; index < size; ++index) {
        to[index] = from[index];
        isPlain &= !mayNeedEscape(from[index]);
    }
    return isPlain;
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

void appendEscapedString(std::string& out, std::string_view text)
{
    out.push_back('"');
    while (!text.empty()) {
        const auto plain = static_cast<std::size_t>(
            std::ranges::find_if(text, [](char c) { return mayNeedEscape(c); }) - text.begin());
        out.append(text.substr(0, plain));
        text.remove_prefix(plain);
        if (!text.empty())
            text.remove_prefix(appendEscaped(out, text));
    }
    out.push_back('"');
}

// Makes room as appending would, so that many small pieces cost few moves of what is there.
void makeRoom(std::string& out, std::size_t count)
{
    if (out.capacity() - out.size() < count)
        out.reserve(std::max(out.size() + count, 2 * out.capacity()));
}

constexpr std::size_t quotesAndComma = 3;

// Appends texts, each with a comma behind it, as long as they need no escape; how many there were.
std::size_t appendPlainStrings(std::string& out, std::span<const std::string_view> texts)
{
    const auto before = out.size();
    std::size_t count = 0;
    out.resize_and_overwrite(out.capacity(), [texts, before, &count](char* data, std::size_t capacity) {
        auto* to = data + before;
        const auto* const end = data + capacity;
        std::size_t written = 0;
        for (const auto text : texts) {
            if (static_cast<std::size_t>(end - to) < text.size() + quotesAndComma)
                break;
            *to = '"';
            if (!copyIfPlain(to + 1, text))
                break;
            to += text.size() + 1;
            *to++ = '"';
            *to++ = ',';
            ++written;
        }
        count = written;
        return static_cast<std::size_t>(to - data);
    });
    return count;
}

}

void appendString(std::string& out, std::string_view text)
{
    const auto before = out.size();
    const auto after = before + text.size() + 2;
    makeRoom(out, text.size() + 2);
    bool isPlain = false;
    out.resize_and_overwrite(after, [&](char* data, std::size_t) {
        isPlain = copyIfPlain(data + before + 1, text);
        data[before] = '"';
        data[after - 1] = '"';
        return isPlain ? after : before;
    });
    if (!isPlain)
        appendEscapedString(out, text);
}

void appendStringArray(std::string& out, std::span<const std::string_view> texts)
{
    makeRoom(out, 2);
    out.push_back('[');
    while (!texts.empty()) {
        makeRoom(out, texts.front().size() + quotesAndComma);
        const auto plain = appendPlainStrings(out, texts);
        texts = texts.subspan(plain);
        if (plain == 0) {
            appendEscapedString(out, texts.front());
            out.push_back(',');
            texts = texts.subspan(1);
        }
    }
    if (out.back() == ',')
        out.back() = ']';
    else
        out.push_back(']');
}

void appendInteger(std::string& out, std::uint64_t number)
{
    std::array<char, 20> digits {};
    const auto written = std::to_chars(digits.data(), digits.data() + digits.size(), number);
    out.append(digits.data(), written.ptr);
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
