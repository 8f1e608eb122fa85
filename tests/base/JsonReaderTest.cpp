#include "base/JsonReader.h"

#include <gtest/gtest.h>
#include <string>

namespace brevanta {

namespace {

struct Parsed {
    json::Parser parser;
    PaddedBuffer bytes;
    std::expected<json::Element, JsonParseError> root;

    explicit Parsed(std::string_view text)
        : root((bytes.assign(text), json::parse(parser, bytes)))
    {
    }
};

}

TEST(JsonReader, OnlyOneWholeValueParses)
{
    for (const char* text : { "", " ", "\n", "{", "{\"a\":1", "{} {}", "{}x", "[1 2]", "tru", "01", "{'a':1}",
             "{\"a\":}", "\"\xFF\"", "nul", "1e999" })
        EXPECT_FALSE(Parsed(text).root) << text;
    for (const char* text : { "{}", " {\n} \n", "[]", "1", "\"x\"", "null" })
        EXPECT_TRUE(Parsed(text).root) << text;
}

TEST(JsonReader, NumbersBooleansAndTextAreNotTakenForOneAnother)
{
    struct Case {
        const char* text;
        std::optional<bool> asBool;
        std::optional<double> asDouble;
        std::optional<std::int64_t> asInt64;
        std::optional<std::uint64_t> asUint64;
    };
    const auto none = std::nullopt;
    for (const auto& expected : {
             Case { "true", true, none, none, none },
             Case { "1", none, 1.0, 1, 1U },
             Case { "0", none, 0.0, 0, 0U },
             Case { "-1", none, -1.0, -1, none },
             Case { "1.5", none, 1.5, none, none },
             Case { "1.0", none, 1.0, 1, 1U },
             Case { "1e2", none, 100.0, 100, 100U },
             Case { "9223372036854775807", none, 9223372036854775807.0, INT64_MAX, 9223372036854775807U },
             Case { "18446744073709551615", none, 18446744073709551615.0, none, UINT64_MAX },
             Case { "-9223372036854775808", none, -9223372036854775808.0, INT64_MIN, none },
             Case { "1.8446744073709552e19", none, 1.8446744073709552e19, none, none },
             Case { "\"1\"", none, none, none, none },
             Case { "[1]", none, none, none, none },
         }) {
        const Parsed parsed(expected.text);
        ASSERT_TRUE(parsed.root) << expected.text;
        EXPECT_EQ(json::asBool(*parsed.root), expected.asBool) << expected.text;
        EXPECT_EQ(json::asDouble(*parsed.root), expected.asDouble) << expected.text;
        EXPECT_EQ(json::asInt64(*parsed.root), expected.asInt64) << expected.text;
        EXPECT_EQ(json::asUint64(*parsed.root), expected.asUint64) << expected.text;
    }
}

TEST(JsonReader, TheBufferMayBeUsedAgainWhileTheDocumentIsRead)
{
    Parsed parsed(R"({"name":"caf\u00e9","none":null})");
    parsed.bytes.assign("something else altogether");
    const auto object = json::asObject(*parsed.root);
    ASSERT_TRUE(object);
    EXPECT_EQ(json::member(*object, "name").and_then(json::asText), "café");
    EXPECT_FALSE(json::member(*object, "none"));
    EXPECT_FALSE(json::member(*object, "absent"));
}

TEST(PaddedBuffer, KeepsItsMemoryAndItsContentWhileItGrows)
{
    PaddedBuffer buffer;
    std::string expected;
    for (int piece = 0; piece < 100; ++piece) {
        const std::string text(static_cast<std::size_t>(piece) * 7, static_cast<char>('a' + piece % 26));
        const auto tail = buffer.writableTail(4096);
        std::ranges::copy(text, tail.begin());
        buffer.commit(text.size());
        expected += text;
    }
    EXPECT_EQ(buffer.view(), expected);
    const auto capacity = buffer.capacity();
    buffer.assign("small");
    EXPECT_EQ(buffer.view(), "small");
    EXPECT_EQ(buffer.capacity(), capacity);
}

}
