#include "notify/NoticeCopy.h"

#include "fakes/FakeFileStore.h"
#include "fakes/FakePorts.h"
#include "notify/NoticeLanguage.h"
#include "notify/NoticeLibrary.h"

#include <gtest/gtest.h>
#include <vector>

namespace brevanta {

TEST(NoticeCopy, ValuesGoInOnceAndAreNeverReadForPlaceholders)
{
    struct Case {
        const char* text;
        const char* expected;
    };
    for (const auto& [text, expected] : {
             Case { "", "" },
             Case { "plain", "plain" },
             Case { "{task}", "{app}" },
             Case { "“{task}” in {app}: {task}", "“{app}” in {task}{task}: {app}" },
             Case { "{none} {} { {task", "{none} {} { {task" },
             Case { "{{task}}", "{{app}}" },
             Case { "{tas}{task }{taskapp}", "{tas}{task }{taskapp}" },
             Case { "}{", "}{" },
         }) {
        const NoticeCopy copy({ { "key", text } }, {});
        EXPECT_EQ(copy.text("key", { { "task", "{app}" }, { "app", "{task}{task}" } }), expected);
    }
}

TEST(NoticeCopy, EnglishStandsInForAKeyThatIsMissing)
{
    const NoticeCopy copy({ { "both", "ambos" } }, { { "both", "both" }, { "english", "only {app}" } });
    EXPECT_EQ(copy.text("both"), "ambos");
    EXPECT_EQ(copy.text("english", { { "app", "Notes" } }), "only Notes");
    EXPECT_EQ(copy.text("neither {app}", { { "app", "Notes" } }), "neither {app}");
}

TEST(NoticeTable, IsAJsonObjectOfTextsAndNothingElse)
{
    EXPECT_EQ(parseNoticeTable(R"({"a": "ä\u00e4", "b": ""})"), (NoticeTable { { "a", "ää" }, { "b", "" } }));
    EXPECT_EQ(parseNoticeTable("{}"), NoticeTable {});
    using enum NoticeTableError;
    const std::pair<std::string, NoticeTableError> bad[] {
        { "", malformedJson },
        { "{\"a\": \"b\"", malformedJson },
        { "{\"a\": \"b\"} x", malformedJson },
        { "{\"a\": \"\xFF\"}", malformedJson },
        { std::string(100'000, '['), malformedJson },
        { "[]", noObject },
        { "null", noObject },
        { R"({"a": "b", "c": 1})", entryIsNoText },
        { R"({"a": null})", entryIsNoText },
        { R"({"a": {"b": "c"}})", entryIsNoText },
    };
    for (const auto& [text, error] : bad)
        EXPECT_EQ(parseNoticeTable(text), std::unexpected(error)) << text.substr(0, 40);
}

TEST(NoticeLanguage, TheUsersChoiceWinsThenTheFirstPreferredLanguageThatThereIs)
{
    using enum NoticeLanguage;
    struct Case {
        std::optional<std::string> chosen;
        std::vector<std::string> system;
        NoticeLanguage expected;
    };
    const Case cases[] {
        { std::nullopt, {}, english },
        { "es", { "zh-Hans-CN" }, spanish },
        { "zh-Hans", {}, simplifiedChinese },
        { "en", { "es" }, english },
        { "system", { "es" }, spanish },
        { "", { "es" }, spanish },
        { "zh", { "es" }, spanish },
        { "ES", { "zh-CN" }, simplifiedChinese },
        { std::nullopt, { "fr-FR", "es-MX", "en-US" }, spanish },
        { std::nullopt, { "de", "fr" }, english },
        { std::nullopt, { "en-GB", "es" }, english },
        { std::nullopt, { "es_ES.UTF-8" }, spanish },
        { std::nullopt, { "es@euro" }, spanish },
        { std::nullopt, { "ES-419" }, spanish },
        { std::nullopt, { "zh-Hans-CN" }, simplifiedChinese },
        { std::nullopt, { "zh_CN.GB18030" }, simplifiedChinese },
        { std::nullopt, { "zh-TW", "en" }, simplifiedChinese },
        { std::nullopt, { "zh-Hant-HK" }, simplifiedChinese },
        { std::nullopt, { "yue-Hant" }, simplifiedChinese },
        { std::nullopt, { "est-EE", "eng", "zha" }, english },
        { std::nullopt, { "C", "POSIX", "", "-", "_es" }, english },
        { std::nullopt, { "C.UTF-8", "es" }, spanish },
    };
    for (const auto& [chosen, system, expected] : cases)
        EXPECT_EQ(chooseNoticeLanguage(chosen, system), expected)
            << chosen.value_or("no choice") << ", " << testing::PrintToString(system);
}

TEST(NoticeLibrary, FollowsTheUsersChoiceAndFallsBackToEnglish)
{
    FakeFileStore files;
    FakeSystemLog log;
    FakeUserDefaults defaults;
    files.replaceFromOutside("/r/notices.en.json", R"({"hello": "Hello", "bye": "Bye"})");
    files.replaceFromOutside("/r/notices.es.json", R"({"hello": "Hola"})");
    files.replaceFromOutside("/r/notices.zh-Hans.json", "{");
    const NoticeLibrary library(files, log, defaults, "/r", { "es-MX" });
    EXPECT_EQ(
        log.lines, std::vector<std::string> { "[NotificationHelper] cannot use notices.zh-Hans.json: malformed JSON" });
    EXPECT_EQ(library.current().text("hello"), "Hola");
    EXPECT_EQ(library.current().text("bye"), "Bye");
    for (const auto& [chosen, hello] :
        { std::pair<DefaultsValue, const char*> { std::string("zh-Hans"), "Hello" }, { std::string("en"), "Hello" },
            { std::string("es"), "Hola" }, { std::string("tlh"), "Hola" }, { true, "Hola" } }) {
        defaults.set(appLanguageKey, chosen);
        EXPECT_EQ(library.current().text("hello"), hello);
    }
}

}
