#include "WebTest.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>

namespace brevanta::functional {

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

// With the times of their last change, folders too.
std::map<fs::path, fs::file_time_type> filesBelow(const fs::path& folder)
{
    std::map<fs::path, fs::file_time_type> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (!entry.is_symlink())
            files.emplace(entry.path(), entry.last_write_time());
    }
    return files;
}

// The client asks about itself on a command line that has neither a display nor a bus, while another one runs in the
// user's session and has put everything into its place.
class DiagnosisTest : public WebTest {
protected:
    void SetUp() override
    {
        ASSERT_NO_FATAL_FAILURE(WebTest::SetUp());
        for (const auto* state : { "installed", "loaded", "allowed" })
            system({ "service", state });
        system({ "filter", "requests", "grant" });
        click("⚠ Install Content Filter…");
        ASSERT_TRUE(showsLine("✓ Content Filter"));
        ASSERT_TRUE(logs("[NativeMessaging] registered with"));
    }

    void system(const std::vector<std::string>& command)
    {
        const auto changed = bench().client().changeSystem(command);
        EXPECT_TRUE(changed) << changed.error();
    }

    [[nodiscard]] fs::path launcher()
    {
        return bench().client().root() / "Library/Application Support/Brevanta/native-host";
    }

    // Something needs the user, this finding is one of those, and the one thing to do has this text. Another finding
    // has this state.
    void expectTrouble(
        const std::string& key, const std::string& remedy, const std::pair<std::string, std::string>& elsewhere = {})
    {
        const auto answer = bench().client().ask({ "--diagnose", "--json" }, patience * 2);
        ASSERT_TRUE(answer) << key << ": it hangs";
        EXPECT_EQ(answer->exitStatus, 1) << key;
        EXPECT_EQ(answer->errors, "") << key;
        EXPECT_EQ(answer->output.find("stand-in-token"), std::string::npos) << answer->output;
        const auto diagnosis = json::parse(answer->output, nullptr, false);
        ASSERT_TRUE(diagnosis.is_object()) << answer->output;
        EXPECT_FALSE(diagnosis["ok"].get<bool>()) << key;
        EXPECT_NE(diagnosis["remedy"].get<std::string>().find(remedy), std::string::npos) << diagnosis["remedy"];
        for (const auto& finding : diagnosis["findings"]) {
            if (finding["key"] == key) {
                EXPECT_EQ(finding["verdict"], "needsUser") << finding;
            }
            if (finding["key"] == elsewhere.first) {
                EXPECT_EQ(finding["state"], elsewhere.second) << finding;
            }
        }
        const auto text = bench().client().ask({ "--diagnose" }, patience * 2);
        ASSERT_TRUE(text) << key;
        EXPECT_EQ(text->exitStatus, 1) << key;
        EXPECT_NE(text->output.find("\nTo do: " + diagnosis["remedy"].get<std::string>() + "\n"), std::string::npos)
            << text->output;
    }
};

}

TEST_F(DiagnosisTest, whereAllIsWellNobodyHasToDoAnything)
{
    const auto answer = bench().client().ask({ "--diagnose" }, patience);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->exitStatus, 0) << answer->output;
    // It sees no bus on which the client would be.
    EXPECT_TRUE(answer->output.ends_with("\nNothing needs you. What begins with -- is worth knowing.\n"))
        << answer->output;
    EXPECT_EQ(answer->output.find("stand-in-token"), std::string::npos) << answer->output;
    EXPECT_EQ(answer->errors, "");

    const auto parsed = bench().client().ask({ "--json", "--diagnose" }, patience);
    ASSERT_TRUE(parsed);
    const auto diagnosis = json::parse(parsed->output, nullptr, false);
    ASSERT_TRUE(diagnosis.is_object()) << parsed->output;
    EXPECT_TRUE(diagnosis["ok"].get<bool>());
    EXPECT_TRUE(diagnosis["remedy"].is_null());
    EXPECT_TRUE(bench().client().process().isRunning()) << "the client in the session goes on";
}

TEST_F(DiagnosisTest, eachStateOfTheServiceThatNeedsTheUserNamesItsRemedy)
{
    tell("token expire");
    expectTrouble("account", "sign in");
    tell("token accept");
    tell("version 0.120.9");
    expectTrouble("service.health", "\"⚠ Update Blocking Service to 0.121.0…\"");
    tell("misbehave garbage");
    expectTrouble("service.health", "\"⚠ Restart Blocking Service…\"");
    tell("misbehave silence");
    expectTrouble("service.health", "\"⚠ Restart Blocking Service…\"", { "service.socket", "noAnswerInTime" });
    tell("behave");
    tell("removal hanging 60");
    expectTrouble("removal", "\"Finish Removal\"", { "filter.state", "on" });

    service().kill();
    system({ "service", "unloaded" });
    expectTrouble("service.health", "\"⚠ Restart Blocking Service…\"");
    system({ "service", "turned-off" });
    expectTrouble("service.health", "\"⚠ Blocking Service Turned Off in System Settings…\"");
    system({ "service", "missing" });
    expectTrouble("service.health", "\"⚠ Install Blocking Service…\"");
}

TEST_F(DiagnosisTest, aDamagedStoreIsNamedAndNothingIsChanged)
{
    click("Quit");
    expectCleanExit(patience);
    const auto everything = filesBelow(bench().client().root());
    const auto store = std::ranges::find_if(
        everything, [](const auto& file) { return file.first.filename() == "com.brevanta.KestreluneMac.json"; });
    ASSERT_NE(store, everything.end());
    std::ofstream(store->first) << "{";
    const auto before = filesBelow(bench().client().root());
    expectTrouble("preferences", "Quit Brevanta, move ");
    EXPECT_EQ(filesBelow(bench().client().root()), before);
}

TEST_F(DiagnosisTest, aFilterThatIsOffAndAFileThatIsGoneNameTheirRemedies)
{
    system({ "filter", "off" });
    expectTrouble("filter.state", "Turn on Brevanta's content filter");
    system({ "filter", "fail-queries" });
    expectTrouble("filter.state", "Ask again");
    system({ "filter", "answer-queries" });
    system({ "filter", "on" });
    // As an editor would leave it behind.
    std::ofstream(launcher(), std::ios::app) << "# mine\n";
    expectTrouble("nativeMessaging.launcher", "open it");
    fs::remove(launcher());
    expectTrouble("nativeMessaging.launcher", "open it");
}

}
