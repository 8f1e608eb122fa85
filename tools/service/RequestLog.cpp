#include "service/RequestLog.h"

#include "service/JsonText.h"
#include "service/RequestTypes.h"

namespace brevanta::service {

static constexpr std::string_view otherType = "other";

RequestLog::RequestLog()
{
    for (const auto type : requestTypes)
        m_counts[std::string(type)] = 0;
    m_counts[std::string(otherType)] = 0;
}

void RequestLog::note(std::string_view type, std::string line)
{
    ++m_counts[std::string(isRequestType(type) ? type : otherType)];
    m_lastLine = std::move(line);
}

std::size_t RequestLog::countOf(std::string_view type) const
{
    const auto found = m_counts.find(std::string(type));
    return found == m_counts.end() ? 0 : found->second;
}

std::string describeRequest(const std::string& line, LogDetail detail)
{
    auto request = parseJson(line);
    // What cannot be parsed cannot be searched for a token either.
    if (!request)
        return "request (" + std::to_string(line.size()) + " bytes that are no JSON)";
    if (detail == LogDetail::redacted && request->is_object()) {
        if (const auto token = request->find("token"); token != request->end()) {
            const auto size
                = token->is_string() ? token->get_ref<const std::string&>().size() : jsonText(*token).size();
            *token = std::to_string(size) + " bytes";
        }
    }
    return "request " + jsonText(*request);
}

}
