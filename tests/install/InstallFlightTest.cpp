#include "install/InstallFlight.h"

#include "fakes/FakePorts.h"
#include "platform/Administrator.h"

#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace brevanta {

namespace {

using Kind = AdministratorError::Kind;

// An administrator who may answer late, and again.
class HeldAdministrator final : public Administrator {
public:
    using Answer = std::expected<std::string, AdministratorError>;

    void run(const std::string& script, const std::string& prompt, std::function<void(Answer)> onEnd) override
    {
        scripts.push_back(script);
        prompts.push_back(prompt);
        ends.push_back(std::move(onEnd));
    }

    // Ends the newest run.
    void answer(const Answer& answer) { ends.back()(answer); }

    std::vector<std::string> scripts;
    std::vector<std::string> prompts;
    std::vector<std::function<void(Answer)>> ends;
};

class InstallFlightTest : public testing::Test {
protected:
    void awaitEnd(const std::string& name)
    {
        flight.whenEnded([this, name](InstallOutcome outcome) { ends.emplace_back(name, outcome); });
    }

    const InstallPaths inBundle { .bundledProgram = "/the/program", .bundledPropertyList = "/the/list" };
    HeldAdministrator administrator;
    FakeSystemLog log;
    std::expected<InstallPaths, std::string> paths { inBundle };
    std::vector<std::string> failures;
    std::vector<bool> changes; // Whether it was in flight at each change.
    std::vector<std::pair<std::string, InstallOutcome>> ends;
    InstallFlight flight { { .administrator = administrator,
        .log = log,
        .paths = [this] { return paths; },
        .showFailure = [this](const std::string& message) { failures.push_back(message); },
        .changed = [this] { changes.push_back(flight.isInFlight()); } } };
};

}

TEST_F(InstallFlightTest, TheUserIsToldOfEachFailureButNotOfACancelledPassword)
{
    struct Case {
        HeldAdministrator::Answer answer;
        InstallOutcome outcome;
        std::string failure; // What the user is told, and the log; empty for nothing.
        std::string line; // In the log; for a failure what stands there behind it.
    };
    const auto error = [](Kind kind, const std::string& message = "") {
        return std::unexpected(AdministratorError { .kind = kind, .message = message });
    };
    const std::string refused
        = "launchd did not accept the blocking service after 20 attempts over about 5 seconds (Input/output error, the "
          "previous service is still registered). Choose Restart Blocking Service from the menu to try again.";
    const std::string installed = "[DaemonInstall] the blocking service was installed";
    for (const auto& [answer, outcome, failure, line] : {
             Case { "", InstallOutcome::installed, "", installed },
             Case { "some words", InstallOutcome::installed, "", installed },
             Case { error(Kind::cancelled), InstallOutcome::cancelled, "",
                 "[DaemonInstall] administrator prompt cancelled by the user" },
             Case { error(Kind::scriptFailed, "no room"), InstallOutcome::failed, "Daemon installation failed: no room",
                 "" },
             Case { error(Kind::scriptFailed, "Bootstrap failed: 5: Input/output error\r" + refused),
                 InstallOutcome::failed, "Daemon installation failed: " + refused, "" },
             Case { error(Kind::unavailable), InstallOutcome::failed, "AppleScript is not available on this Mac.", "" },
             Case { error(Kind::notCompiled, "Expected end of line."), InstallOutcome::failed,
                 "The install script could not be compiled.", " (Expected end of line.)" },
             Case { error(Kind::noResult), InstallOutcome::failed, "The install script returned no result.", "" },
         }) {
        failures.clear();
        ends.clear();
        log.lines.clear();
        flight.begin();
        awaitEnd("page");
        administrator.answer(answer);
        using Lines = std::vector<std::string>;
        EXPECT_EQ(failures, failure.empty() ? Lines {} : Lines { failure });
        EXPECT_EQ(ends, (decltype(ends) { { "page", outcome } }));
        EXPECT_EQ(log.lines, Lines { failure.empty() ? line : "[DaemonInstall] " + failure + line });
    }
    EXPECT_EQ(administrator.scripts.back(), installScript(inBundle));
    EXPECT_EQ(administrator.prompts.back(), installPrompt);

    flight.beginRemoval("the script");
    flight.begin();
    administrator.answer(error(Kind::scriptFailed, "did not stop"));
    EXPECT_EQ(failures.back(), "did not stop") << "nothing was installed";
    flight.beginRemoval("the script");
    awaitEnd("removal");
    administrator.answer("");
    EXPECT_EQ(ends.back(), std::pair(std::string("removal"), InstallOutcome::removed));
    EXPECT_EQ(administrator.scripts.back(), "the script");
    EXPECT_EQ(administrator.prompts.back(), removalPrompt);
}

TEST_F(InstallFlightTest, OneInstallRunsAtATimeAndEachWaiterHearsOfItsOwnOnce)
{
    awaitEnd("early");
    EXPECT_EQ(ends, (decltype(ends) { { "early", InstallOutcome::cancelled } })) << "there is nothing to wait for";
    ends.clear();
    flight.begin();
    flight.begin();
    EXPECT_EQ(administrator.scripts.size(), 1U);
    EXPECT_EQ(flight.generation(), 1U);
    awaitEnd("first");
    flight.whenEnded([this](InstallOutcome) {
        flight.begin();
        awaitEnd("of the next");
    });
    awaitEnd("last");
    administrator.answer("");
    EXPECT_EQ(ends, (decltype(ends) { { "first", InstallOutcome::installed }, { "last", InstallOutcome::installed } }));
    EXPECT_EQ(changes, (std::vector { true, false, true }));
    EXPECT_EQ(flight.generation(), 2U);

    administrator.ends[0](std::unexpected(AdministratorError { .kind = Kind::noResult }));
    EXPECT_TRUE(flight.isInFlight()) << "a late answer of the first is not the second's";
    administrator.answer(std::unexpected(AdministratorError { .kind = Kind::cancelled }));
    administrator.answer("");
    ASSERT_EQ(ends.size(), 3U);
    EXPECT_EQ(ends.back(), std::pair(std::string("of the next"), InstallOutcome::cancelled));
    EXPECT_TRUE(failures.empty());
}

TEST_F(InstallFlightTest, WithoutItsFilesAnInstallFailsBeforeThePasswordIsAskedFor)
{
    paths = std::unexpected("Could not locate the app bundle.");
    flight.begin();
    awaitEnd("page");
    EXPECT_TRUE(administrator.scripts.empty());
    EXPECT_EQ(failures, std::vector<std::string> { "Could not locate the app bundle." });
    EXPECT_EQ(ends, (decltype(ends) { { "page", InstallOutcome::failed } }));
    EXPECT_EQ(changes, (std::vector { true, false }));
    paths = inBundle;
    flight.begin();
    EXPECT_TRUE(flight.isInFlight()) << "they are looked for anew";
}

}
