#include "gtk/LoginItemGtk.h"

#include "fakes/FakeMainLoop.h"
#include "functional/support/TemporaryDirectory.h"

#include <fstream>
#include <gtest/gtest.h>

namespace brevanta {

namespace {

class LoginItemGtkTest : public testing::Test {
protected:
    LoginItemGtk itemOf(const std::filesystem::path& executable)
    {
        return { loop, autostart, { .name = "Brevanta", .identifier = "com.example.App", .executable = executable } };
    }

    LoginItemStatus statusOf(LoginItemGtk& item)
    {
        std::optional<LoginItemStatus> status;
        item.readStatus([&](LoginItemStatus read) { status = read; });
        EXPECT_FALSE(status) << "not inside the call";
        loop.runPosted();
        return status.value_or(LoginItemStatus::notFound);
    }

    std::expected<void, LoginItemError> registerIn(LoginItemGtk& item)
    {
        std::optional<std::expected<void, LoginItemError>> result;
        item.registerApplication([&](const auto& ended) { result = ended; });
        loop.runPosted();
        return result.value_or(std::unexpected(LoginItemError { "nothing was told" }));
    }

    void write(const std::string& text) const { std::ofstream(entry) << text; }
    [[nodiscard]] std::string read() const
    {
        std::ifstream file(entry);
        return { std::istreambuf_iterator<char>(file), {} };
    }

    functional::TemporaryDirectory home;
    std::filesystem::path autostart { home.path() / ".config/autostart" };
    std::filesystem::path entry { autostart / "com.example.App.desktop" };
    FakeClock clock;
    FakeMainLoop loop { clock };
};

}

TEST_F(LoginItemGtkTest, RegisteringWritesTheEntryThatReadsAsEnabled)
{
    auto item = itemOf("/Applications/A $\"b\" 5%\\c.app/Brevanta");
    EXPECT_EQ(statusOf(item), LoginItemStatus::notRegistered);
    EXPECT_TRUE(registerIn(item));
    EXPECT_EQ(read(),
        "[Desktop Entry]\nType=Application\nName=Brevanta\n"
        "Exec=\"/Applications/A \\\\$\\\\\"b\\\\\" 5%%\\\\\\\\c.app/Brevanta\"\n");
    EXPECT_EQ(statusOf(item), LoginItemStatus::enabled);
}

TEST_F(LoginItemGtkTest, AnEntryCountsByWhatItStartsAndWhetherItIsHidden)
{
    auto item = itemOf("/b/Brevanta");
    std::filesystem::create_directories(autostart);
    const struct {
        const char* text;
        LoginItemStatus expected;
    } cases[] = {
        { "[Desktop Entry]\nExec=\"/b/Brevanta\"\n", LoginItemStatus::enabled },
        { "[Desktop Entry]\nExec=\"/b/Brevanta\"\nHidden=false\n", LoginItemStatus::enabled },
        { "[Desktop Entry]\nExec=\"/b/Brevanta\"\nHidden=true\n", LoginItemStatus::requiresApproval },
        { "[Desktop Entry]\nHidden=true\n", LoginItemStatus::requiresApproval },
        { "[Desktop Entry]\nExec=\"/old/Brevanta\"\n", LoginItemStatus::notRegistered },
        { "no entry at all", LoginItemStatus::notRegistered },
        { "", LoginItemStatus::notRegistered },
    };
    for (const auto& [text, expected] : cases) {
        write(text);
        EXPECT_EQ(statusOf(item), expected) << text;
    }
    EXPECT_TRUE(registerIn(item));
    EXPECT_EQ(statusOf(item), LoginItemStatus::enabled);
}

TEST_F(LoginItemGtkTest, WhereNoEntryCanBeWrittenTheErrorSaysWhy)
{
    auto item = itemOf("/b/Brevanta");
    std::ofstream(home.path() / ".config") << "a file in the folder's place";
    const auto result = registerIn(item);
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().message, "could not make the folder: Not a directory");
}

}
