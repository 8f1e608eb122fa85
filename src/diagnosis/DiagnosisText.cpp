#include "diagnosis/DiagnosisText.h"

#include "base/Json.h"
#include "base/Text.h"
#include "crash/ReportScrubber.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace brevanta {

namespace {

std::string_view name(FindingVerdict verdict)
{
    switch (verdict) {
    case FindingVerdict::good:
        return "good";
    case FindingVerdict::notice:
        return "notice";
    case FindingVerdict::needsUser:
        break;
    }
    return "needsUser";
}

std::string_view mark(FindingVerdict verdict)
{
    switch (verdict) {
    case FindingVerdict::good:
        return "  ok  ";
    case FindingVerdict::notice:
        return "  --  ";
    case FindingVerdict::needsUser:
        break;
    }
    return "  !!  ";
}

std::string withoutHome(std::string text, const std::string& home)
{
    if (home.size() < 2) // "/" is nobody's.
        return text;
    for (auto at = text.find(home); at != std::string::npos; at = text.find(home, at + 1)) {
        const auto next = at + home.size();
        if (next == text.size() || text[next] == '/')
            text.replace(at, home.size(), "~");
    }
    return text;
}

std::string shown(const std::string& text, const DiagnosisPrivacy& privacy)
{
    return singleLine(scrubReport(withoutHome(text, privacy.home.string()), privacy.secrets));
}

std::string conclusion(const Diagnosis& diagnosis)
{
    if (const auto remedy = diagnosis.remedy())
        return "To do: " + *remedy;
    return diagnosis.allIsWell() ? "All is well." : "Nothing needs you. What begins with -- is worth knowing.";
}

Json textOrNull(const std::optional<std::string>& text) { return text && !text->empty() ? Json(*text) : Json(nullptr); }

}

std::string diagnosisText(const Diagnosis& diagnosis, const DiagnosisPrivacy& privacy)
{
    std::size_t width = 0;
    for (const auto& finding : diagnosis.findings)
        width = std::max(width, finding.title.size());
    std::string text;
    for (const auto& finding : diagnosis.findings) {
        text += mark(finding.verdict);
        text += finding.title + std::string(width - finding.title.size() + 2, ' ');
        text += shown(finding.text, privacy) + '\n';
        if (!finding.remedy.empty())
            text += "      " + std::string(width + 2, ' ') + "→ " + shown(finding.remedy, privacy) + '\n';
    }
    return text + '\n' + shown(conclusion(diagnosis), privacy) + '\n';
}

std::string diagnosisJson(const Diagnosis& diagnosis, const DiagnosisPrivacy& privacy)
{
    auto findings = Json::array();
    for (const auto& finding : diagnosis.findings)
        findings.push_back({ { "key", finding.key }, { "title", finding.title }, { "state", textOrNull(finding.state) },
            { "text", shown(finding.text, privacy) }, { "verdict", name(finding.verdict) },
            { "remedy", textOrNull(shown(finding.remedy, privacy)) } });
    auto remedy = diagnosis.remedy();
    if (remedy)
        remedy = shown(*remedy, privacy);
    const Json object { { "schema", 1 }, { "ok", !diagnosis.needsUser() }, { "remedy", textOrNull(remedy) },
        { "findings", std::move(findings) } };
    return object.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

std::string diagnosisOutput(const Diagnosis& diagnosis, const DiagnosisPrivacy& privacy, DiagnosisFormat format)
{
    return format == DiagnosisFormat::json ? diagnosisJson(diagnosis, privacy) : diagnosisText(diagnosis, privacy);
}

}
