#include "gtk/UserDefaultsGtk.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeMainLoop.h"
#include "fakes/FakePorts.h"
#include "functional/support/TemporaryDirectory.h"
#include "host/UserDefaultsContract.h"

#include <fstream>
#include <sys/stat.h>

namespace brevanta {

namespace {

namespace fs = std::filesystem;

class UserDefaultsGtkBench {
public:
    UserDefaultsGtkBench() { startAnew(); }
    void wait(double seconds) { m_mainLoop.advance(seconds); }

    UserDefaults& defaults() { return *m_defaults; }
    void startAnew()
    {
        m_defaults.reset();
        m_defaults = std::make_unique<UserDefaultsGtk>(file(), m_log, m_mainLoop);
    }

    [[nodiscard]] fs::path folder() const { return m_folder.path() / "Library" / "Preferences"; }
    [[nodiscard]] fs::path file() const { return folder() / "settings.json"; }
    [[nodiscard]] const std::vector<std::string>& logLines() const { return m_log.lines; }

    [[nodiscard]] nlohmann::json document() const { return nlohmann::json::parse(read(file()), nullptr, false); }

    void writeFile(std::string_view contents) const
    {
        fs::create_directories(folder());
        std::ofstream(file(), std::ios::binary) << contents;
    }

    [[nodiscard]] std::string read(const fs::path& path) const
    {
        std::ifstream stream(path, std::ios::binary);
        return { std::istreambuf_iterator<char>(stream), {} };
    }

private:
    functional::TemporaryDirectory m_folder;
    FakeSystemLog m_log;
    FakeClock m_clock;
    FakeMainLoop m_mainLoop { m_clock };
    std::unique_ptr<UserDefaultsGtk> m_defaults;
};

class UserDefaultsGtkTest : public testing::Test {
protected:
    UserDefaultsGtkBench m_bench;
};

struct stat statusOf(const fs::path& path)
{
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status;
}

}

INSTANTIATE_TYPED_TEST_SUITE_P(Gtk, UserDefaultsContract, UserDefaultsGtkBench);

TEST_F(UserDefaultsGtkTest, TheFileIsForItsUserAloneAndMadeByTheFirstValue)
{
    EXPECT_FALSE(fs::exists(m_bench.folder()));
    m_bench.defaults().set("key", true);
    EXPECT_EQ(statusOf(m_bench.file()).st_mode & 07777U, 0600U);
    EXPECT_EQ(statusOf(m_bench.folder()).st_mode & 07777U, 0700U);
    EXPECT_TRUE(m_bench.logLines().empty());
}

TEST_F(UserDefaultsGtkTest, WhatDoesNotChangeIsNotWrittenAgain)
{
    m_bench.defaults().set("key", std::int64_t { 1 });
    const auto before = statusOf(m_bench.file()).st_ino;
    m_bench.defaults().set("key", std::int64_t { 1 });
    m_bench.defaults().remove("absent");
    EXPECT_EQ(statusOf(m_bench.file()).st_ino, before);
    m_bench.defaults().set("key", 1.0);
    EXPECT_NE(statusOf(m_bench.file()).st_ino, before) << "a number of another kind is a change";
}

TEST_F(UserDefaultsGtkTest, ADamagedFileIsMovedAsideWholeAndTheStoreBeginsEmpty)
{
    const std::string damages[]
        = { "", "{", "[1, 2]", "null", "{\"key\": 1} tail", "{\"key\": \"\xFF\"}", "{'key': 1}" };
    int number = 0;
    for (const auto& damage : damages) {
        m_bench.writeFile(damage);
        m_bench.startAnew();
        EXPECT_EQ(m_bench.defaults().get("key"), std::nullopt) << damage;
        EXPECT_FALSE(fs::exists(m_bench.file())) << damage;
        const auto aside = m_bench.file().string() + ".damaged-" + std::to_string(++number);
        EXPECT_EQ(m_bench.read(aside), damage);
        ASSERT_EQ(m_bench.logLines().size(), static_cast<std::size_t>(number)) << damage;
        EXPECT_TRUE(m_bench.logLines().back().starts_with("[UserDefaults] ")) << m_bench.logLines().back();
        EXPECT_TRUE(m_bench.logLines().back().ends_with(aside)) << m_bench.logLines().back();
    }
    m_bench.defaults().set("key", true);
    m_bench.startAnew();
    EXPECT_EQ(m_bench.defaults().get("key"), DefaultsValue(true));
}

TEST_F(UserDefaultsGtkTest, AFolderInTheFilesPlaceIsMovedAsideToo)
{
    fs::create_directories(m_bench.file() / "child");
    m_bench.startAnew();
    m_bench.defaults().set("key", true);
    EXPECT_TRUE(fs::is_regular_file(m_bench.file()));
    EXPECT_TRUE(fs::is_directory(m_bench.file().string() + ".damaged-1/child"));
}

TEST_F(UserDefaultsGtkTest, ChangesThatCouldNotBeWrittenAreMadeUpForOnceTheyCanBe)
{
    const auto away = m_bench.folder().string() + "-away";
    const std::function<void()> occasions[] = {
        [this] { m_bench.defaults().set("first", std::string("value")); },
        [this] { m_bench.wait(10); },
        [this] { m_bench.startAnew(); },
    };
    for (std::size_t failures = 0; const auto& occasion : occasions) {
        m_bench.defaults().remove("first");
        m_bench.defaults().set("removed", true);
        fs::rename(m_bench.folder(), away);
        std::ofstream(m_bench.folder()) << "a file where the folder should be";
        m_bench.defaults().set("first", std::string("value"));
        m_bench.defaults().remove("removed");
        EXPECT_EQ(m_bench.defaults().get("first"), DefaultsValue(std::string("value")));
        EXPECT_EQ(m_bench.defaults().get("removed"), std::nullopt);
        m_bench.wait(100);
        EXPECT_EQ(m_bench.logLines().size(), ++failures) << "the same failure is told once";

        fs::remove(m_bench.folder());
        fs::rename(away, m_bench.folder());
        occasion();
        EXPECT_EQ(m_bench.document(), nlohmann::json::parse(R"({"first": "value"})"));
        EXPECT_EQ(m_bench.logLines().size(), failures);
    }
}

TEST_F(UserDefaultsGtkTest, WhatJsonCannotHoldLastsForTheProcessAndLeavesTheRestStorable)
{
    const DefaultsValue values[]
        = { std::string("\xFF"), std::numeric_limits<double>::infinity(), DefaultsDate { 1e12 } };
    for (const auto& value : values) {
        m_bench.defaults().set("odd", std::int64_t { 5 });
        m_bench.defaults().set("odd", value);
        EXPECT_EQ(m_bench.defaults().get("odd"), value);
        m_bench.defaults().set("other", value.index() == 2);
        m_bench.startAnew();
        EXPECT_EQ(m_bench.defaults().get("odd"), DefaultsValue(std::int64_t { 5 })) << "as it was stored before";
        EXPECT_EQ(m_bench.defaults().get("other"), DefaultsValue(value.index() == 2));
    }
}

TEST_F(UserDefaultsGtkTest, AStorableValueTakesThePlaceOfAnUnstorableOne)
{
    m_bench.defaults().set("key", std::string("\xFF"));
    m_bench.defaults().set("key", std::string("text"));
    EXPECT_EQ(m_bench.defaults().get("key"), DefaultsValue(std::string("text")));
    m_bench.defaults().set("key", std::string("\xFF"));
    m_bench.defaults().remove("key");
    EXPECT_EQ(m_bench.defaults().get("key"), std::nullopt);
}

TEST_F(UserDefaultsGtkTest, ValuesOfOtherShapesReadAsNothingAndAreKeptInTheFile)
{
    const std::string shapes[]
        = { "null", "{\"a\":1}", "[1,\"x\"]", "[1.5]", "[true]", "[[1]]", "18446744073709551615", "9223372036854775808",
              R"({"date":1})", R"({"date":"2026-11-21"})", R"({"date":"2026-11-21T12:00:00.000Z","a":1})",
              R"({"Date":"2026-11-21T12:00:00.000Z"})", R"({"date":"2026-02-30T12:00:00.000Z"})", "{}" };
    for (const auto& shape : shapes) {
        m_bench.writeFile("{\"foreign\":" + shape + "}");
        m_bench.startAnew();
        EXPECT_EQ(m_bench.defaults().get("foreign"), std::nullopt) << shape;
        EXPECT_EQ(m_bench.defaults().persistent("foreign"), (StoredDefault { true, std::nullopt })) << shape;
        m_bench.defaults().set("own", true);
        const auto stored = nlohmann::json::parse(m_bench.read(m_bench.file()));
        EXPECT_EQ(stored["foreign"], nlohmann::json::parse(shape)) << shape;
    }
    EXPECT_TRUE(m_bench.logLines().empty());
}

TEST_F(UserDefaultsGtkTest, ADateIsStoredAsAnObjectInUtcWithMilliseconds)
{
    m_bench.defaults().set("key", DefaultsDate { 1795262400.0004 });
    EXPECT_EQ(m_bench.document(), nlohmann::json::parse(R"({"key": {"date": "2026-11-21T12:00:00.000Z"}})"));
    EXPECT_EQ(m_bench.defaults().get("key"), DefaultsValue(DefaultsDate { 1795262400 }));
    const auto before = statusOf(m_bench.file()).st_ino;
    m_bench.defaults().set("key", DefaultsDate { 1795262400.0004 });
    EXPECT_EQ(statusOf(m_bench.file()).st_ino, before);
}

TEST_F(UserDefaultsGtkTest, WhatAnotherProcessStoresIsSeenAndKept)
{
    m_bench.defaults().set("own", std::int64_t { 1 });
    m_bench.defaults().set("both", std::int64_t { 1 });
    m_bench.writeFile(R"({"own": 1, "both": 2, "theirs": true})");
    EXPECT_EQ(m_bench.defaults().persistent("theirs"), (StoredDefault { true, true }));
    EXPECT_EQ(m_bench.defaults().persistent("both"), (StoredDefault { true, std::int64_t { 2 } }));

    m_bench.defaults().set("own", std::int64_t { 5 });
    EXPECT_EQ(m_bench.document(), nlohmann::json::parse(R"({"own": 5, "both": 2, "theirs": true})"));

    m_bench.writeFile(R"({"both": 3, "theirs": false})");
    m_bench.defaults().remove("both");
    EXPECT_EQ(m_bench.document(), nlohmann::json::parse(R"({"theirs": false})")) << "what they removed stays away";
    EXPECT_EQ(m_bench.defaults().get("own"), std::nullopt);

    m_bench.writeFile(R"({"both": 4, "theirs": true})");
    m_bench.defaults().remove("both");
    EXPECT_EQ(m_bench.document(), nlohmann::json::parse(R"({"theirs": true})")) << "a key that only they know";
}

TEST_F(UserDefaultsGtkTest, AValueThatAnotherProcessHasChangedIsStoredAgain)
{
    m_bench.defaults().set("key", true);
    m_bench.writeFile(R"({"key": false})");
    m_bench.defaults().set("key", true);
    EXPECT_EQ(m_bench.defaults().persistent("key"), (StoredDefault { true, true }));
    fs::remove(m_bench.file());
    m_bench.defaults().set("key", true);
    EXPECT_EQ(m_bench.defaults().persistent("key"), (StoredDefault { true, true }));
}

TEST_F(UserDefaultsGtkTest, AFileDamagedMeanwhileIsMovedAsideAndWhatIsKnownStoredAnew)
{
    m_bench.defaults().set("first", true);
    m_bench.defaults().set("second", true);
    m_bench.writeFile("{");
    EXPECT_EQ(m_bench.defaults().persistent("first"), StoredDefault());
    EXPECT_EQ(m_bench.read(m_bench.file()), "{") << "looking changes nothing";
    m_bench.defaults().set("first", true);
    EXPECT_EQ(m_bench.document(), nlohmann::json::parse(R"({"first": true, "second": true})"));
    EXPECT_EQ(m_bench.read(m_bench.file().string() + ".damaged-1"), "{");
}

}
