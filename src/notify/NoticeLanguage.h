#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace brevanta {

// The languages in which the client's own notices are written.
enum class NoticeLanguage { english, simplifiedChinese, spanish };

inline constexpr std::array noticeLanguages { NoticeLanguage::english, NoticeLanguage::simplifiedChinese,
    NoticeLanguage::spanish };

// The user default that holds the tag of the language that the user chose; absent while the system's is followed.
inline constexpr auto appLanguageKey = "brevantaAppLanguage";

// "en", "zh-Hans" or "es".
[[nodiscard]] std::string_view languageTag(NoticeLanguage language);

// The name of the language's table without a folder, such as "notices.zh-Hans.json".
[[nodiscard]] std::string noticeFileName(NoticeLanguage language);

// The language that the user chose, or else the first of the system's preferred ones that the notices are written in,
// or else English. `chosen` is one of the tags above; other text counts as no choice. The system's are in the order of
// preference: BCP 47 tags such as "zh-Hans-CN", or POSIX locales such as "es_ES.UTF-8". Whoever reads Chinese in
// whatever script or region gets simplified Chinese, as in the language matching of the Unicode CLDR.
[[nodiscard]] NoticeLanguage chooseNoticeLanguage(
    const std::optional<std::string>& chosen, std::span<const std::string> systemLanguages);

}
