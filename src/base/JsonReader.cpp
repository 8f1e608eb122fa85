#include "base/JsonReader.h"

#include <cmath>
#include <utility>

namespace brevanta::json {

namespace {

template <typename Value> std::optional<Value> valueOf(simdjson::simdjson_result<Value> result)
{
    Value value;
    if (std::move(result).get(value) != simdjson::SUCCESS)
        return std::nullopt;
    return value;
}

// 2^63 and 2^64 are exact doubles; the largest integers of the two types are not.
constexpr double twoToThe63 = 9223372036854775808.0;
constexpr double twoToThe64 = 18446744073709551616.0;

std::optional<double> integralDouble(Element element)
{
    if (!element.is_double())
        return std::nullopt;
    const auto number = valueOf(element.get_double());
    if (!number || std::trunc(*number) != *number)
        return std::nullopt;
    return number;
}

}

std::expected<Element, JsonParseError> parse(Parser& parser, const PaddedBuffer& bytes)
{
    const auto content = bytes.view();
    if (content.empty())
        return std::unexpected(JsonParseError { "no JSON found" });
    // A little room to grow: a document that gains an entry now and then would take all of its memory anew each time.
    if (parser.capacity() < content.size() && parser.allocate(content.size() + content.size() / 4) != simdjson::SUCCESS)
        return std::unexpected(JsonParseError { "no memory for the document" });
    Element element;
    const auto error = parser.parse(content.data(), content.size(), false).get(element);
    if (error != simdjson::SUCCESS)
        return std::unexpected(JsonParseError { simdjson::error_message(error) });
    return element;
}

std::optional<Element> member(Object object, std::string_view key)
{
    const auto value = valueOf(object.at_key(key));
    if (!value || value->is_null())
        return std::nullopt;
    return value;
}

std::optional<bool> asBool(Element element) { return valueOf(element.get_bool()); }

std::optional<double> asDouble(Element element) { return valueOf(element.get_double()); }

std::optional<std::int64_t> asInt64(Element element)
{
    if (const auto integer = valueOf(element.get_int64()))
        return integer;
    const auto number = integralDouble(element);
    if (!number || *number < -twoToThe63 || *number >= twoToThe63)
        return std::nullopt;
    return static_cast<std::int64_t>(*number);
}

std::optional<std::uint64_t> asUint64(Element element)
{
    if (const auto integer = valueOf(element.get_uint64()))
        return integer;
    const auto number = integralDouble(element);
    if (!number || *number < 0 || *number >= twoToThe64)
        return std::nullopt;
    return static_cast<std::uint64_t>(*number);
}

std::optional<std::string_view> asText(Element element) { return valueOf(element.get_string()); }

std::optional<Array> asArray(Element element) { return valueOf(element.get_array()); }

std::optional<Object> asObject(Element element) { return valueOf(element.get_object()); }

}
