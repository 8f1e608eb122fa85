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
    std::vector<InstallFailure> failures;
    std::vector<bool> changes; // Whether it was in flight at each change.
    std::vector<std::pair<std::string, InstallOutcome>> ends;
    InstallFlight flight { { .administrator = administrator,
        .log = log,
        .paths = [this] { return paths; },
        .scrub = [](const std::string& text) { return text; },
        .showFailure = [this](const InstallFailure& failure) { failures.push_back(failure); },
        .changed = [this] { changes.push_back(flight.isInFlight()); } } };
};

}

TEST_F(InstallFlightTest, TheUserIsToldOfEachFailureButNotOfACancelledPassword)
{
    struct Case {
        HeldAdministrator::Answer answer;
        InstallOutcome outcome;
        std::string line; // In the log, for an end that is no failure.
    };
    const AdministratorError full { .message = "cp: a: No space left on device", .number = 1 };
    const AdministratorError notCompiled { .kind = Kind::notCompiled, .message = "Expected end of line." };
    const std::string installed = "the blocking service was installed";
    for (const auto& [answer, outcome, line] : {
             Case { "", InstallOutcome::installed, installed },
             Case { "some words", InstallOutcome::installed, installed },
             Case { std::unexpected(AdministratorError { .kind = Kind::cancelled }), InstallOutcome::cancelled,
                 "administrator prompt cancelled by the user" },
             Case { std::unexpected(full), InstallOutcome::failed, "" },
             Case { std::unexpected(notCompiled), InstallOutcome::failed, "" },
         }) {
        failures.clear();
        ends.clear();
        log.lines.clear();
        flight.begin();
        awaitEnd("page");
        administrator.answer(answer);
        std::vector<InstallFailure> expected;
        if (outcome == InstallOutcome::failed)
            expected.push_back(installFailure(answer.error(), FlightTask::install));
        EXPECT_EQ(failures, expected);
        EXPECT_EQ(ends, (decltype(ends) { { "page", outcome } }));
        EXPECT_EQ(log.lines, std::vector { "[DaemonInstall] " + (expected.empty() ? line : expected.front().report) });
    }
    EXPECT_EQ(administrator.scripts.back(), installScript(inBundle));
    EXPECT_EQ(administrator.prompts.back(), installPrompt);

    flight.beginRemoval("the script");
    flight.begin();
    administrator.answer(std::unexpected(full));
    EXPECT_EQ(failures.back(), installFailure(full, FlightTask::removal)) << "nothing was installed";
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
    EXPECT_EQ(failures, std::vector { incompleteBundleFailure("Could not locate the app bundle.") });
    EXPECT_EQ(ends, (decltype(ends) { { "page", InstallOutcome::failed } }));
    EXPECT_EQ(changes, (std::vector { true, false }));
    paths = inBundle;
    flight.begin();
    EXPECT_TRUE(flight.isInFlight()) << "they are looked for anew";
}

}
