#pragma once

#include "base/Json.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace brevanta::json {

// Each appends one JSON value (RFC 8259) that is also a safe JavaScript expression: U+2028 and U+2029, which older
// JavaScript takes for line ends, are escaped too. The text must be UTF-8; other bytes pass as they are. Text that
// needs no escape costs little more than copying it; who writes much reserves the room, or writes into a string that
// has it.
void appendString(std::string& out, std::string_view text);
void appendStringArray(std::string& out, std::span<const std::string_view> texts);

void appendInteger(std::string& out, std::uint64_t number);

// The shortest digits that read back as the same number. Infinity and not-a-number, which JSON lacks, become null.
void appendNumber(std::string& out, double number);

// A whole value, the keys of its objects in their order. Text that is not UTF-8 gets replacement characters.
[[nodiscard]] std::string scriptText(const Json& value);

}
