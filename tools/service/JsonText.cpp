#include "service/JsonText.h"

#include <algorithm>

namespace brevanta::service {

static std::size_t nestingOf(std::string_view text)
{
    std::size_t depth = 0;
    std::size_t deepest = 0;
    bool isInString = false;
    for (std::size_t index = 0; index < text.size(); ++index) {
        const char character = text[index];
        if (isInString && character == '\\')
            ++index;
        else if (character == '"')
            isInString = !isInString;
        else if (!isInString && (character == '[' || character == '{'))
            deepest = std::max(deepest, ++depth);
        else if (!isInString && (character == ']' || character == '}') && depth)
            --depth;
    }
    return deepest;
}

std::expected<nlohmann::json, ServiceError> parseJson(std::string_view text)
{
    if (nestingOf(text) > deepestNesting)
        return fail("JSON is nested too deeply");
    auto value = nlohmann::json::parse(text, nullptr, false);
    if (value.is_discarded())
        return fail("not valid JSON");
    return value;
}

std::string jsonText(const nlohmann::json& value)
{
    return value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}
