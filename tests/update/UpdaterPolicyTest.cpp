#include "update/UpdaterPolicy.h"

#include "base/Base64.h"
#include "fakes/FakeUpdater.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <vector>

namespace brevanta {

namespace {

using UpdaterPolicy::Command;

constexpr auto feed = "https://updates.example.com/releases.xml";

// Stands for the system's parser, which knows this one URL.
std::optional<Url> parseUrl(const std::string& text)
{
    if (text != feed)
        return std::nullopt;
    return Url { .text = text, .scheme = "https", .host = "updates.example.com", .path = "/releases.xml" };
}

// Its bytes have letters in base64 that differ between the two alphabets.
std::string keyOf(std::size_t size) { return base64(std::vector<std::uint8_t>(size, 0xFB)); }

std::string urlSafe(std::string key)
{
    for (auto& letter : key)
        letter = letter == '+' ? '-' : letter == '/' ? '_' : letter;
    return key;
}

}

TEST(UpdaterPolicy, OnlyAKeyOf32BytesInBase64MakesAConfiguration)
{
    const auto key = keyOf(32);
    ASSERT_EQ(key.size(), 44U);
    ASSERT_NE(key, urlSafe(key));
    struct Case {
        std::string key;
        bool isUsable;
    };
    const Case cases[]
        = { { key, true }, { key + "\n", true }, { " \t\r\n" + key + "\r\n", true }, { keyOf(31), false },
              { keyOf(33), false }, { "", false }, { " \n", false }, { "no base64!", false }, { urlSafe(key), false },
              { key.substr(0, 43), false }, { key + "=", false }, { key.substr(0, 20) + "\n" + key.substr(20), false },
              { key + std::string(1, '\0'), false }, { key + key, false } };
    for (const auto& [text, isUsable] : cases) {
        const auto expected = isUsable
            ? std::optional(UpdaterPolicy::Configuration { .feedURL = *parseUrl(feed), .publicEDKey = text })
            : std::nullopt;
        EXPECT_EQ(UpdaterPolicy::configuration(feed, text, parseUrl), expected) << text << ": the key as it was read";
    }
}

TEST(UpdaterPolicy, BothTextsHaveToBeThereAndTheFeedToBeAUrl)
{
    EXPECT_FALSE(UpdaterPolicy::configuration(std::nullopt, keyOf(32), parseUrl));
    EXPECT_FALSE(UpdaterPolicy::configuration(feed, std::nullopt, parseUrl));
    for (const char* const text : { "", "no url" })
        EXPECT_FALSE(UpdaterPolicy::configuration(text, keyOf(32), parseUrl)) << text;
}

TEST(UpdaterPolicy, CommandsAreMatchedExactlyAndDoNothingWithoutAnUpdater)
{
    struct Case {
        const char* name;
        bool checksBefore;
        bool checksAfter;
        int checksNow;
    };
    for (const auto& [name, before, after, checksNow] :
        { Case { "get_updater_state", true, true, 0 }, Case { "set_updater_auto_checks_on", false, true, 0 },
            Case { "set_updater_auto_checks_off", true, false, 0 }, Case { "updater_check_now", false, false, 1 } }) {
        const auto command = UpdaterPolicy::command(name);
        ASSERT_TRUE(command) << name;
        UpdaterPolicy::perform(*command, nullptr);
        FakeUpdater updater;
        updater.checks = before;
        UpdaterPolicy::perform(*command, &updater);
        EXPECT_EQ(updater.checks, after) << name;
        EXPECT_EQ(updater.checksNow, checksNow) << name;
    }
    for (const char* const name : { "", "updater", "updater_check_now ", "Updater_check_now", "get_updater_states" })
        EXPECT_FALSE(UpdaterPolicy::command(name)) << name;
}

TEST(UpdaterPolicy, TheStateTellsWhatThereIs)
{
    FakeUpdater updater;
    const auto state = [](bool available, bool automatic) {
        return Json { { "available", available }, { "automaticChecks", automatic }, { "version", "1.2" } };
    };
    EXPECT_EQ(UpdaterPolicy::state(nullptr, "1.2"), state(false, false));
    EXPECT_EQ(UpdaterPolicy::state(&updater, "1.2"), state(true, false));
    updater.checks = true;
    EXPECT_EQ(UpdaterPolicy::state(&updater, "1.2"), state(true, true));
}

}
