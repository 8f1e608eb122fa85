#include "notify/AppRejectionReasonCopy.h"
#include "notify/NoticeCopy.h"
#include "notify/NoticeKeys.h"
#include "notify/NoticeLanguage.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <set>

namespace brevanta {

namespace {

std::expected<NoticeTable, NoticeTableError> shippedTable(NoticeLanguage language)
{
    std::ifstream file(BREVANTA_COPY_FOLDER "/" + noticeFileName(language), std::ios::binary);
    return parseNoticeTable(std::string(std::istreambuf_iterator<char>(file), {}));
}

// The placeholders of a text, sorted; a brace that belongs to none counts as one named "?".
std::multiset<std::string> placeholders(std::string_view text)
{
    std::multiset<std::string> names;
    for (auto at = text.find_first_of("{}"); at != std::string_view::npos; at = text.find_first_of("{}")) {
        text.remove_prefix(at);
        const auto end = text.find_first_of("{}", 1);
        const bool isWhole = text[0] == '{' && end != std::string_view::npos && text[end] == '}' && end > 1;
        names.insert(isWhole ? std::string(text.substr(1, end - 1)) : "?");
        text.remove_prefix(isWhole ? end + 1 : 1);
    }
    return names;
}

// One line for each way in which a table differs from the English one or cannot be shown.
std::vector<std::string> faults(const NoticeTable& table, const NoticeTable& english)
{
    std::vector<std::string> found;
    for (const auto& [key, text] : english) {
        if (!table.contains(key))
            found.push_back("lacks " + key);
    }
    for (const auto& [key, text] : table) {
        const auto original = english.find(key);
        if (original == english.end())
            found.push_back("has more: " + key);
        else if (placeholders(text) != placeholders(original->second))
            found.push_back("other placeholders: " + key);
        if (text.find_first_not_of(" \t\n") == std::string::npos)
            found.push_back("empty: " + key);
        if (placeholders(text).contains("?"))
            found.push_back("stray brace: " + key);
        if (text.find_first_of("\"'") != std::string::npos)
            found.push_back("typewriter quotes: " + key);
    }
    return found;
}

// Every key that the client asks for, with the placeholders for which it has a value.
std::map<std::string, std::multiset<std::string>> usedKeys()
{
    using namespace noticeKeys;
    std::map<std::string, std::multiset<std::string>> keys;
    for (const auto key : { taskResumedTitle, taskResumedBody, autoTrackStartTitle, autoTrackStopTitle,
             blockingServiceOffTitle, blockingServiceOffBody, contentFilterOffTitle, contentFilterOffBody })
        keys[std::string(key)] = {};
    keys[std::string(taskResumedBodyWithTask)] = { "task" };
    keys[std::string(taskResumedBodyWithApp)] = { "app" };
    keys[std::string(autoTrackStartBody)] = { "app" };
    keys[std::string(autoTrackStopBody)] = { "app" };
    for (const auto kind : { PendingAppRejection::Kind::rejectedOpen, PendingAppRejection::Kind::sessionEnded }) {
        keys[AppRejectionReasonCopy::titleKey(kind)] = {};
        keys[AppRejectionReasonCopy::titleKeyWithApp(kind)] = { "app" };
        for (const auto* const reason : { "always_blocked", "situation", "coins_depleted", "daily_cap", "active_task",
                 "authorization_unconfirmed", "unspecified" }) {
            PendingAppRejection rejection { .reason = reason, .kind = kind };
            keys[AppRejectionReasonCopy::bodyKey(rejection)] = {};
            rejection.taskTitle = "Read";
            keys[AppRejectionReasonCopy::bodyKey(rejection)] = { "task" };
        }
    }
    return keys;
}

}

TEST(AppRejectionReasonCopy, FindsTheTextByReasonKindAndWhetherTheTaskHasATitle)
{
    using enum PendingAppRejection::Kind;
    struct Case {
        std::string reason;
        PendingAppRejection::Kind kind;
        std::optional<std::string> title;
        const char* expected;
    };
    const Case cases[] {
        { "always_blocked", rejectedOpen, std::nullopt, "rejectedOpen.alwaysBlocked" },
        { "daily_cap", sessionEnded, "Play", "sessionEnded.dailyCap.task" },
        { "active_task", rejectedOpen, " \n", "rejectedOpen.activeTask" },
        { "unspecified", sessionEnded, "", "sessionEnded.unspecified" },
        { "", rejectedOpen, std::nullopt, "rejectedOpen.unspecified" },
        { "Situation", sessionEnded, "Play", "sessionEnded.unspecified.task" },
        { "coins_depleted_later", sessionEnded, std::nullopt, "sessionEnded.unspecified" },
    };
    for (const auto& [reason, kind, title, expected] : cases)
        EXPECT_EQ(AppRejectionReasonCopy::bodyKey({ .taskTitle = title, .reason = reason, .kind = kind }),
            std::string("macApp.notice.rejection.") + expected);
}

TEST(NoticeResources, EnglishHasEveryTextThatTheClientAsksForAndNoOther)
{
    const auto english = shippedTable(NoticeLanguage::english);
    ASSERT_TRUE(english);
    std::map<std::string, std::multiset<std::string>> there;
    for (const auto& [key, text] : *english)
        there[key] = placeholders(text);
    EXPECT_EQ(there, usedKeys());
}

TEST(NoticeResources, EveryLanguageSaysWhatEnglishSays)
{
    const auto english = shippedTable(NoticeLanguage::english);
    ASSERT_TRUE(english);
    for (const auto language : noticeLanguages) {
        const auto table = shippedTable(language);
        ASSERT_TRUE(table) << languageTag(language);
        EXPECT_EQ(faults(*table, *english), std::vector<std::string> {}) << languageTag(language);
    }
}

TEST(NoticeResources, TheComparisonFindsPlantedFaults)
{
    const NoticeTable english { { "a", "“{task}” in {app}" }, { "b", "text" } };
    struct Case {
        NoticeTable table;
        std::vector<std::string> expected;
    };
    const Case cases[] {
        { { { "a", "{app}: «{task}»" }, { "b", "texto" } }, {} },
        { { { "b", "texto" } }, { "lacks a" } },
        { { { "a", "{app} {task}" }, { "b", "texto" }, { "c", "más" } }, { "has more: c" } },
        { { { "a", "{app}" }, { "b", "texto" } }, { "other placeholders: a" } },
        { { { "a", "{app} {task} {task}" }, { "b", "texto" } }, { "other placeholders: a" } },
        { { { "a", "{app} {tarea}" }, { "b", "texto" } }, { "other placeholders: a" } },
        { { { "a", "{app} {task}" }, { "b", " " } }, { "empty: b" } },
        { { { "a", "{app} {task}" }, { "b", "tex}to" } }, { "other placeholders: b", "stray brace: b" } },
        { { { "a", "{app} \"{task}\"" }, { "b", "texto" } }, { "typewriter quotes: a" } },
    };
    for (const auto& [table, expected] : cases)
        EXPECT_EQ(faults(table, english), expected);
}

}
