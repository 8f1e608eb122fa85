#include "base/FailureDetails.h"

#include "base/Text.h"

#include <unordered_map>
#include <vector>

namespace brevanta {

namespace {

std::string trimmed(std::string_view line)
{
    const auto text = singleLine(line);
    const auto begin = text.find_first_not_of(' ');
    return begin == std::string::npos ? std::string() : text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

}

std::string foldedLines(std::string_view output)
{
    std::vector<std::string> lines; // That differ, in their order.
    std::unordered_map<std::string, std::size_t> counts;
    while (!output.empty()) {
        const auto end = output.find_first_of("\r\n"); // AppleScript turns each line feed into a carriage return.
        const auto line = trimmed(output.substr(0, end));
        output.remove_prefix(end == std::string_view::npos ? output.size() : end + 1);
        if (!isBlank(line) && ++counts[line] == 1)
            lines.push_back(line);
    }
    std::string folded;
    for (const auto& line : lines) {
        folded += (folded.empty() ? "" : "; ") + line;
        if (const auto count = counts[line]; count > 1)
            folded += " (" + std::to_string(count) + " times)";
    }
    return folded;
}

std::string failureDetails(std::string_view output)
{
    const auto folded = foldedLines(output);
    return folded.empty() ? folded : "\n\nDetails: " + clipped(folded, maxDetailsBytes);
}

}
