#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace brevanta {

using PropertyListTexts = std::map<std::string, std::string, std::less<>>;

// The text values of the dictionary at the top of an XML property list (Apple's PropertyList-1.0.dtd), by their keys;
// values of other kinds are left out, and of two with one key the first counts. Nothing for what is no such list: a
// binary one, other XML, bytes that are not UTF-8, or more than 1 MiB.
[[nodiscard]] std::optional<PropertyListTexts> parsePropertyList(std::string_view xml);

// The same of a file. Nothing when it cannot be read or is no regular file.
[[nodiscard]] std::optional<PropertyListTexts> readPropertyList(const std::filesystem::path& file);

}
