#include "gtk/AdministratorGtk.h"

#include "host/AdministratorContract.h"
#include "host/DisplayTest.h"
#include "support/TemporaryDirectory.h"

#include <fstream>
#include <optional>

namespace brevanta {

namespace {

using Result = std::expected<std::string, AdministratorError>;
using Kind = AdministratorError::Kind;
using functional::TemporaryDirectory;

// The one dialog that can be seen; null when there is none.
Gtk::Dialog* visibleDialog()
{
    for (auto* const toplevel : Gtk::Window::list_toplevels()) {
        auto* const dialog = dynamic_cast<Gtk::Dialog*>(toplevel);
        if (dialog && dialog->get_visible() && dialog->get_title() == "Administrator")
            return dialog;
    }
    return nullptr;
}

Gtk::Entry& passwordIn(Gtk::Dialog& dialog) { return *widgetsIn<Gtk::Entry>(dialog).at(0); }

void givePassword()
{
    passwordIn(*visibleDialog()).set_text("secret");
    visibleDialog()->response(Gtk::RESPONSE_OK);
}

class AdministratorGtkTest : public DisplayTest {
protected:
    AdministratorGtkTest() { administrator.emplace(window, loop, root, BREVANTA_STANDINS); }

    void start(const std::string& script)
    {
        result.reset();
        administrator->run(script, "Give the <password> of a_b", [this](const Result& ended) { result = ended; });
    }

    Result resultOf(const std::string& script)
    {
        start(script);
        givePassword();
        EXPECT_TRUE(serveUntil([&] { return result.has_value(); })) << script;
        return result.value_or("");
    }

    Result resultWithoutDialog()
    {
        EXPECT_FALSE(result) << "not inside the call";
        EXPECT_FALSE(visibleDialog());
        EXPECT_TRUE(serveUntil([&] { return result.has_value(); }));
        return result.value_or("");
    }

    static Result error(Kind kind, const std::string& message = {}, int number = 0)
    {
        return std::unexpected(AdministratorError { kind, message, number });
    }

    Gtk::Window window;
    TemporaryDirectory directory;
    std::filesystem::path root { std::filesystem::canonical(directory.path()) };
    std::optional<AdministratorGtk> administrator;
    std::optional<Result> result;
};

// The contract's bench is no test itself.
class AdministratorGtkBench : public DisplayTest {
public:
    AdministratorGtkBench() { m_administrator.emplace(m_window, loop, m_root.path(), BREVANTA_STANDINS); }

    Administrator& administrator() { return *m_administrator; }
    static void givePassword() { brevanta::givePassword(); }
    static void cancel() { visibleDialog()->response(Gtk::RESPONSE_CANCEL); }
    using DisplayTest::serveUntil;
    static void serveForATurn()
    {
        while (g_main_context_iteration(nullptr, FALSE)) { }
    }
    void end() { m_administrator.reset(); }

private:
    void TestBody() override { }

    Gtk::Window m_window;
    TemporaryDirectory m_root;
    std::optional<AdministratorGtk> m_administrator;
};

}

INSTANTIATE_TYPED_TEST_SUITE_P(Gtk, AdministratorContract, AdministratorGtkBench);

TEST_F(AdministratorGtkTest, TheDialogHidesThePasswordAndTakesAnyButAnEmptyOne)
{
    start("echo ran >ran");
    auto* const dialog = visibleDialog();
    ASSERT_TRUE(dialog);
    EXPECT_EQ(widgetsIn<Gtk::Label>(*dialog).at(0)->get_text(), "Give the <password> of a_b");
    auto& password = passwordIn(*dialog);
    EXPECT_FALSE(password.get_visibility());
    EXPECT_EQ(password.get_accessible()->get_name(), "Password");
    auto& complaint = *widgetsIn<Gtk::Label>(*dialog).at(1);
    EXPECT_FALSE(complaint.get_visible());
    dialog->response(Gtk::RESPONSE_OK);
    EXPECT_EQ(visibleDialog(), dialog) << "an empty password";
    EXPECT_TRUE(complaint.get_mapped());
    EXPECT_EQ(password.get_accessible()->get_description(), complaint.get_text());
    password.set_text("secret");
    EXPECT_FALSE(complaint.get_visible()) << "it is empty no more";
    std::optional<std::string> left;
    dialog->signal_hide().connect([&] { left = password.get_text(); });
    gtk_widget_activate(GTK_WIDGET(password.gobj())); // The Return key's doing.
    EXPECT_TRUE(serveUntil([&] { return result.has_value(); }));
    EXPECT_EQ(left, "") << "the password is gone before the dialog is";
    EXPECT_TRUE(std::filesystem::exists(root / "ran"));
}

TEST_F(AdministratorGtkTest, EscapeAndClosingCancelAndNothingRuns)
{
    for (const auto act : { +[](Gtk::Dialog& dialog) { g_signal_emit_by_name(dialog.gobj(), "close"); }, // Escape.
             +[](Gtk::Dialog& dialog) { dialog.close(); },
             +[](Gtk::Dialog& dialog) { dialog.response(Gtk::RESPONSE_CANCEL); } }) {
        start("echo ran >ran");
        auto* const dialog = visibleDialog();
        ASSERT_TRUE(dialog);
        passwordIn(*dialog).set_text("secret");
        act(*dialog);
        EXPECT_TRUE(serveUntil([&] { return result.has_value(); }));
        EXPECT_EQ(result, error(Kind::cancelled));
    }
    EXPECT_TRUE(std::filesystem::is_empty(root));
}

TEST_F(AdministratorGtkTest, TheEndOfTheScriptIsToldAsItWas)
{
    const struct {
        const char* script;
        Result expected;
    } cases[] = {
        { "printf ''", "" },
        { "echo a; echo b", "a\nb" },
        { "printf 'a\\n\\n'", "a\n" },
        { "echo out; echo err >&2; exit 75", error(Kind::scriptFailed, "err", 75) },
        { "exit 1", error(Kind::scriptFailed, "", 1) },
        { "printf '\\377' >&2; exit 1", error(Kind::scriptFailed, "\uFFFD", 1) },
        { "kill -KILL $$", error(Kind::noResult) },
    };
    for (const auto& [script, expected] : cases)
        EXPECT_EQ(resultOf(script), expected) << script;
    EXPECT_EQ(resultOf("pwd; echo $STANDIN_ROOT; for name in launchctl lockf xattr chown; do command -v $name; done"),
        root.string() + '\n' + root.string() + '\n' + root.string() + "/bin/launchctl\n" + root.string()
            + "/usr/bin/lockf\n" + root.string() + "/usr/bin/xattr\n" + root.string() + "/usr/sbin/chown");
}

TEST_F(AdministratorGtkTest, WhoWritesMoreThanAnybodyReadsIsCutShort)
{
    const auto output = resultOf("head -c 20000000 /dev/zero | tr '\\0' x");
    ASSERT_TRUE(output);
    EXPECT_EQ(output->size(), 65536U);
    // A process that is left behind and goes on writing.
    EXPECT_TRUE(resultOf("(while [ -d \"$STANDIN_ROOT\" ]; do echo more; done) & echo begun").has_value());
}

TEST_F(AdministratorGtkTest, AScriptThatHasBegunRunsOnWithoutTheAdministrator)
{
    const auto look = loop.startTimer(0.01, TimerRepeat::forever, [] { }); // For `serveUntil` to look again.
    start("mkfifo go; echo >begun; read line <go; echo out; echo err >&2; echo >done");
    givePassword();
    ASSERT_TRUE(serveUntil([&] { return std::filesystem::exists(root / "begun"); }));
    administrator.reset();
    std::ofstream(root / "go") << "go\n";
    EXPECT_TRUE(serveUntil([&] { return std::filesystem::exists(root / "done"); }));
    EXPECT_FALSE(result);
}

TEST_F(AdministratorGtkTest, WhatCannotRunIsToldWithoutAQuestion)
{
    using namespace std::string_literals;
    start("echo a\0; echo b"s);
    EXPECT_EQ(resultWithoutDialog(), error(Kind::notCompiled));
    for (const auto& noRoot : { std::filesystem::path("/"), std::filesystem::path("/usr/.."), root / "none" }) {
        administrator.emplace(window, loop, noRoot, BREVANTA_STANDINS);
        start("echo a");
        EXPECT_EQ(resultWithoutDialog(), error(Kind::unavailable)) << noRoot;
    }
    administrator.emplace(window, loop, root, root / "none");
    EXPECT_EQ(resultOf("echo a"),
        error(Kind::scriptFailed, (root / "none/launchctl").string() + " is no program that can be run"));
}

TEST_F(AdministratorGtkTest, ASecondRunMeanwhileIsCancelled)
{
    start("echo first");
    std::optional<Result> second;
    administrator->run("echo second", "", [&](const Result& ended) { second = ended; });
    EXPECT_TRUE(serveUntil([&] { return second.has_value(); }));
    EXPECT_EQ(second, error(Kind::cancelled));
    givePassword();
    EXPECT_TRUE(serveUntil([&] { return result.has_value(); }));
    EXPECT_EQ(result, Result("first"));
}

}
