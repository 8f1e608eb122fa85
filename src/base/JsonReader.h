#pragma once

#include "base/Json.h"
#include "base/PaddedBuffer.h"

#include <cstdint>
#include <expected>
#include <memory>
#include <optional>
#include <simdjson.h>
#include <string_view>

namespace brevanta::json {

using Element = simdjson::dom::element;
using Array = simdjson::dom::array;
using Object = simdjson::dom::object;
using Parser = simdjson::dom::parser;

// Parses one whole JSON value (RFC 8259); bytes behind it other than white space are an error. The element, and all
// text reached from it, lives until the parser is used again or destroyed; the buffer may change meanwhile.
[[nodiscard]] std::expected<Element, JsonParseError> parse(Parser& parser, const PaddedBuffer& bytes);

// The value of a key; nothing when the key is absent or JSON null. The first one counts when a key is repeated.
[[nodiscard]] std::optional<Element> member(Object object, std::string_view key);

// Strict conversions: nothing when the value is of another kind. A boolean is not a number, nor a number a boolean; an
// integer is any number without a fraction (1, 1.0, 1e2) that fits its type exactly. Text lives as long as the element.
[[nodiscard]] std::optional<bool> asBool(Element element);
[[nodiscard]] std::optional<double> asDouble(Element element);
[[nodiscard]] std::optional<std::int64_t> asInt64(Element element);
[[nodiscard]] std::optional<std::uint64_t> asUint64(Element element);
[[nodiscard]] std::optional<std::string_view> asText(Element element);
[[nodiscard]] std::optional<Array> asArray(Element element);
[[nodiscard]] std::optional<Object> asObject(Element element);

}
