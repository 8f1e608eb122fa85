#include "notify/NoticeLibrary.h"

#include "platform/FileStore.h"
#include "platform/SystemLog.h"
#include "platform/UserDefaults.h"

#include <utility>
#include <variant>

namespace brevanta {

namespace {

NoticeTable tableIn(const FileStore& files, SystemLog& log, const std::filesystem::path& file)
{
    const auto complain = [&](std::string_view fault) {
        log.log("[NotificationHelper] cannot use " + file.filename().string() + ": " + std::string(fault));
        return NoticeTable {};
    };
    const auto json = files.read(file);
    if (!json)
        return complain(json.error().message);
    auto table = parseNoticeTable(*json);
    return table ? std::move(*table) : complain(describe(table.error()));
}

std::optional<std::string> textAt(const UserDefaults& defaults, const char* key)
{
    const auto value = defaults.get(key);
    const auto* const text = value ? std::get_if<std::string>(&*value) : nullptr;
    return text ? std::optional(*text) : std::nullopt;
}

}

NoticeLibrary::NoticeLibrary(const FileStore& files, SystemLog& log, const UserDefaults& defaults,
    const std::filesystem::path& folder, std::vector<std::string> systemLanguages)
    : m_defaults(defaults)
    , m_systemLanguages(std::move(systemLanguages))
{
    const auto english = tableIn(files, log, folder / noticeFileName(NoticeLanguage::english));
    for (const auto language : noticeLanguages) {
        auto table = language == NoticeLanguage::english ? NoticeTable {}
                                                         : tableIn(files, log, folder / noticeFileName(language));
        m_copies.emplace(language, NoticeCopy(std::move(table), english));
    }
}

const NoticeCopy& NoticeLibrary::current() const
{
    return m_copies.at(chooseNoticeLanguage(textAt(m_defaults, appLanguageKey), m_systemLanguages));
}

}
