#include "web/PageScripts.h"

#include "base/JsonWriter.h"
#include "daemon/BlockingStatus.h"

#include <gtest/gtest.h>
#include <limits>
#include <nlohmann/json.hpp>
#include <random>

namespace brevanta {

namespace {

std::string written(std::string_view text)
{
    std::string out;
    json::appendString(out, text);
    return out;
}

}

TEST(JsonWriter, NothingInATextCanEndIt)
{
    struct Case {
        std::string text;
        std::string expected;
    };
    for (const auto& [text, expected] : {
             Case { "", "\"\"" }, Case { "plain.example", "\"plain.example\"" },
             Case { "\"quoted\" \\ 'single'", "\"\\\"quoted\\\" \\\\ 'single'\"" },
             Case { "a\nb\tc\r", "\"a\\nb\\u0009c\\u000d\"" },
             Case { std::string("\0", 1) + "\x1F\x7F", "\"\\u0000\\u001f\x7F\"" },
             Case { "x\u2028y\u2029z", "\"x\\u2028y\\u2029z\"" },
             Case { "\u2013 caf\u00e9 \u7126\u70b9", "\"\u2013 caf\u00e9 \u7126\u70b9\"" },
             Case { "\xE2", "\"\xE2\"" }, // Cut off, and passed as it is.
         })
        EXPECT_EQ(written(text), expected);
}

TEST(JsonWriter, WhatIsWrittenReadsBackAsTheSameText)
{
    std::mt19937 random(7);
    const std::string_view pieces[]
        = { "a", "\"", "\\", "\n", "\u2028", "\u2029", "\u2013", "\x01", "</script>", "😀", "'" };
    for (int round = 0; round < 2000; ++round) {
        std::string text;
        for (std::size_t count = random() % 12; count > 0; --count)
            text += pieces[random() % std::size(pieces)];
        ASSERT_EQ(Json::parse(written(text)).get<std::string>(), text);
    }
}

TEST(JsonWriter, WhereverATextNeedsAnEscapeItGetsOneAndItsNeighboursStayAsTheyAre)
{
    constexpr std::size_t longest = 50; // More than three of the pieces in which texts are copied.
    const std::pair<std::string, std::string> specials[]
        = { { "\"", "\\\"" }, { "\\", "\\\\" }, { "\x1F", "\\u001f" }, { std::string(1, '\0'), "\\u0000" },
              { "\u2028", "\\u2028" }, { "\xE2", "\xE2" }, { "\x7F", "\x7F" }, { "\xFF", "\xFF" }, { " ", " " } };
    for (std::size_t size = 0; size <= longest; ++size) {
        for (std::size_t at = 0; at <= size; ++at) {
            const std::string before(at, '!');
            const std::string after(size - at, '~');
            for (const auto& [special, escaped] : specials) {
                const auto text = before + special + after;
                const auto expected = "\"" + before + escaped + after + "\"";
                ASSERT_EQ(written(text), expected);
                const std::string_view texts[] = { after, text, "", text, before };
                std::string out = "x";
                json::appendStringArray(out, texts);
                ASSERT_EQ(out, "x[\"" + after + "\"," + expected + ",\"\"," + expected + ",\"" + before + "\"]");
            }
        }
    }
}

TEST(JsonWriter, AWholeValueHasNoLineThatJavaScriptWouldEnd)
{
    EXPECT_EQ(json::scriptText(Json { { "b\u2028", { "x\u2029y–\xE2\x80", nullptr } }, { "a", 1 } }),
        "{\"a\":1,\"b\\u2028\":[\"x\\u2029y–\uFFFD\",null]}");
}

TEST(JsonWriter, NumbersAreShortAndExact)
{
    for (const auto& [number, expected] :
        std::initializer_list<std::pair<double, const char*>> { { 3, "3" }, { 12.5, "12.5" }, { -0.1, "-0.1" },
            { 1e300, "1e+300" }, { std::numeric_limits<double>::infinity(), "null" },
            { std::numeric_limits<double>::quiet_NaN(), "null" } }) {
        std::string out;
        json::appendNumber(out, number);
        EXPECT_EQ(out, expected);
    }
}

TEST(PageScripts, TheBlockingStatusIsOneEventWhateverTheDomainsSay)
{
    const std::string_view domains[] = { "a.example", "\"}));alert(1);//" };
    BlockingStatus status;
    status.blocking = true;
    status.energy = 12.5;
    status.blockedDomains = domains;
    std::string script;
    PageScripts::appendBlockingStatus(script, status);
    EXPECT_EQ(script,
        "window.dispatchEvent(new CustomEvent('kestrelune_blocking_status', {\n"
        "    detail: {\n"
        "        blocking: true,\n"
        "        energy: 12.5,\n"
        "        blockedDomains: [\"a.example\",\"\\\"}));alert(1);//\"],\n"
        "        blockedApps: []\n"
        "    }\n"
        "}));");
}

TEST(PageScripts, APickedApplicationCarriesItsThreeTexts)
{
    EXPECT_EQ(PageScripts::appPicked("com.example.a", "A \"B\"", "data:image/png;base64,AA=="),
        "window.dispatchEvent(new CustomEvent('kestrelune_app_picked', { detail: "
        "{\"bundle_id\":\"com.example.a\",\"name\":\"A \\\"B\\\"\",\"icon\":\"data:image/png;base64,AA==\"} }));");
    EXPECT_EQ(PageScripts::appPicked("a", "b\xFF", ""),
        "window.dispatchEvent(new CustomEvent('kestrelune_app_picked', { detail: "
        "{\"bundle_id\":\"a\",\"name\":\"b\uFFFD\",\"icon\":\"\"} }));");
}

}
