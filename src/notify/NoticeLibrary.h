#pragma once

#include "notify/NoticeCopy.h"
#include "notify/NoticeLanguage.h"

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace brevanta {

class FileStore;
class SystemLog;
class UserDefaults;

// The notices' words in every language that the client ships, and the language of the moment. Main thread only.
class NoticeLibrary {
public:
    // Reads the tables from the folder once. One that cannot be read is logged, and English stands in for it, and the
    // keys themselves for English. `systemLanguages` as in `chooseNoticeLanguage`.
    NoticeLibrary(const FileStore& files, SystemLog& log, const UserDefaults& defaults,
        const std::filesystem::path& folder, std::vector<std::string> systemLanguages);

    // The words in the language that the user has chosen by now, or else in the system's.
    [[nodiscard]] const NoticeCopy& current() const;

private:
    const UserDefaults& m_defaults;
    std::vector<std::string> m_systemLanguages;
    std::map<NoticeLanguage, NoticeCopy> m_copies; // One for each language.
};

}
