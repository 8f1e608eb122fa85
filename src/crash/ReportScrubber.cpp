#include "crash/ReportScrubber.h"

#include "base/Text.h"
#include "crash/SensitiveValues.h"

#include <algorithm>
#include <array>
#include <vector>

namespace brevanta {

namespace {

using namespace std::string_view_literals;

constexpr std::array queryKeys { "query"sv, "querystring"sv, "fragment"sv };

bool isLetterOrDigit(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'); }

// RFC 6750, section 2.1: b64token.
bool isTokenCharacter(char c) { return isLetterOrDigit(c) || "-._~+/="sv.contains(c); }

// What no URL holds.
bool endsUrl(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return byte <= ' ' || byte == 0x7F || "\"<>`"sv.contains(c);
}

// For each place in the pattern, how many of the characters up to it also begin the pattern (Knuth, Morris and Pratt).
std::vector<std::size_t> borders(std::string_view pattern)
{
    std::vector<std::size_t> lengths(pattern.size(), 0);
    for (std::size_t at = 1, length = 0; at < pattern.size(); ++at) {
        while (length > 0 && pattern[at] != pattern[length])
            length = lengths[length - 1];
        if (pattern[at] == pattern[length])
            ++length;
        lengths[at] = length;
    }
    return lengths;
}

std::string withoutSecret(std::string_view text, std::string_view secret)
{
    const auto lengths = borders(secret);
    std::string out;
    std::size_t matched = 0;
    std::size_t written = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        while (matched > 0 && text[at] != secret[matched])
            matched = lengths[matched - 1];
        if (text[at] == secret[matched])
            ++matched;
        if (matched < secret.size())
            continue;
        out.append(text.substr(written, at + 1 - secret.size() - written)).append(removedFromReport);
        written = at + 1;
        matched = 0;
    }
    return out.append(text.substr(written));
}

// How long the space behind the word "bearer" is, which in a URL is encoded; 0 when it is not the word.
std::size_t bearerGap(std::string_view rest)
{
    constexpr auto word = "bearer"sv;
    if (!"bB"sv.contains(rest.front()) || lowerCased(rest.substr(0, word.size())) != word)
        return 0;
    rest.remove_prefix(word.size());
    if (rest.starts_with("%20"))
        return 3;
    const auto gap = rest.find_first_not_of(" \t+");
    return gap == std::string_view::npos ? rest.size() : gap;
}

// Bearer tokens, and what begins like a JSON object in base64url: "eyJ" is `{"`, "eyAi" has a space between.
std::string withoutTokens(std::string_view text)
{
    constexpr std::size_t shortestToken = 12;
    constexpr std::size_t bearerSize = 6;
    std::string out;
    std::size_t written = 0;
    const auto remove = [&](std::size_t begin) {
        auto end = begin;
        while (end < text.size() && isTokenCharacter(text[end]))
            ++end;
        if (end == begin)
            return begin;
        out.append(text.substr(written, begin - written)).append(removedFromReport);
        written = end;
        return end;
    };
    for (std::size_t at = 0; at < text.size();) {
        const auto rest = text.substr(at);
        if (const auto gap = bearerGap(rest); gap > 0) {
            at = remove(at + bearerSize + gap);
            continue;
        }
        const auto isToken = (rest.starts_with("eyJ") || rest.starts_with("eyAi")) && rest.size() >= shortestToken
            && std::ranges::all_of(rest.substr(0, shortestToken), isTokenCharacter);
        at = isToken ? remove(at) : at + 1;
    }
    return out.append(text.substr(written));
}

// Takes the parts of one URL out; words that are none have none of these parts.
void appendWithoutQuery(std::string& out, std::string_view word)
{
    std::size_t written = 0;
    bool hasPath = false; // Or a host, or a scheme: a question mark behind it begins a query.
    for (std::size_t at = 0; at < word.size(); ++at) {
        const auto rest = word.substr(at);
        for (const auto mark : { "://"sv, ":\\/\\/"sv }) {
            if (!rest.starts_with(mark))
                continue;
            const auto authority = rest.substr(mark.size(), rest.find_first_of("/\\?#", mark.size()) - mark.size());
            at += mark.size() - 1;
            if (const auto user = authority.rfind('@'); user != std::string_view::npos) {
                out.append(word.substr(written, at + 1 - written)).append(removedFromReport);
                written = at + 1 + user;
                at = written;
            }
        }
        const char c = word[at];
        if ((c == '?' && (hasPath || at == 0)) || (c == '#' && hasPath)) {
            out.append(word.substr(written, at + 1 - written));
            if (at + 1 < word.size())
                out.append(removedFromReport);
            return;
        }
        hasPath = hasPath || "/:."sv.contains(c);
    }
    out.append(word.substr(written));
}

std::string withoutQueries(std::string_view text)
{
    std::string out;
    std::size_t begin = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (!endsUrl(text[at]))
            continue;
        appendWithoutQuery(out, text.substr(begin, at - begin));
        out.push_back(text[at]);
        begin = at + 1;
    }
    appendWithoutQuery(out, text.substr(begin));
    return out;
}

}

std::string scrubReport(std::string_view text, std::span<const std::string> secrets)
{
    std::string scrubbed(text);
    for (const auto& secret : secrets) {
        if (secret.size() >= shortestSecret)
            scrubbed = withoutSecret(scrubbed, secret);
    }
    return withoutSecretValues(withoutQueries(withoutTokens(scrubbed)));
}

bool isSensitiveReportKey(std::string_view key)
{
    if (isSecretKey(key))
        return true;
    auto last = lowerCased(key.substr(key.rfind('.') + 1)); // "http.query"
    std::erase_if(last, [](char c) { return c == '_' || c == '-'; });
    return std::ranges::find(queryKeys, last) != queryKeys.end();
}

}
