#include "notify/NoticeLanguage.h"

#include "base/Text.h"

namespace brevanta {

namespace {

// The language of a tag or locale, without script, region, encoding and variant.
std::optional<NoticeLanguage> languageOf(std::string_view tag)
{
    const auto primary = lowerCased(tag.substr(0, tag.find_first_of("-_.@")));
    if (primary == "en")
        return NoticeLanguage::english;
    if (primary == "es")
        return NoticeLanguage::spanish;
    // Cantonese has a tag of its own, and is written in Chinese.
    if (primary == "zh" || primary == "yue")
        return NoticeLanguage::simplifiedChinese;
    return std::nullopt;
}

}

std::string_view languageTag(NoticeLanguage language)
{
    switch (language) {
    case NoticeLanguage::english:
        return "en";
    case NoticeLanguage::simplifiedChinese:
        return "zh-Hans";
    case NoticeLanguage::spanish:
        break;
    }
    return "es";
}

std::string noticeFileName(NoticeLanguage language)
{
    return "notices." + std::string(languageTag(language)) + ".json";
}

NoticeLanguage chooseNoticeLanguage(
    const std::optional<std::string>& chosen, std::span<const std::string> systemLanguages)
{
    for (const auto language : noticeLanguages) {
        if (chosen == languageTag(language))
            return language;
    }
    for (const auto& tag : systemLanguages) {
        if (const auto language = languageOf(tag))
            return *language;
    }
    return NoticeLanguage::english;
}

}
