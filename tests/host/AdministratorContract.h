#pragma once

#include "platform/Administrator.h"

#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace brevanta {

// What holds for every Administrator. A bench gives:
//   Administrator& administrator();
//   void givePassword();               to the question of the run that was asked for last
//   void cancel();                     the same question
//   bool serveUntil(condition);        serves the main loop; false when the condition does not come true
//   void serveForATurn();              serves what is ready now, without waiting
//   void end();                        destroys the administrator
template <typename Bench> class AdministratorContract : public testing::Test {
protected:
    using Result = std::expected<std::string, AdministratorError>;

    void run(const std::string& script)
    {
        m_bench.administrator().run(script, "A prompt", [this](const Result& result) { m_ends.push_back(result); });
        EXPECT_TRUE(m_ends.empty()) << "not inside the call";
    }

    [[nodiscard]] std::vector<Result> endsOfRun()
    {
        EXPECT_TRUE(m_bench.serveUntil([this] { return !m_ends.empty(); }));
        m_bench.serveForATurn();
        return std::exchange(m_ends, {});
    }

    Bench m_bench;
    std::vector<Result> m_ends;
};

TYPED_TEST_SUITE_P(AdministratorContract);

TYPED_TEST_P(AdministratorContract, EachRunEndsOnceAfterTheCallAsThePasswordAndTheScriptHaveIt)
{
    using Kind = AdministratorError::Kind;
    const auto error = [](Kind kind, const std::string& message = {}, int number = 0) {
        return std::vector<std::expected<std::string, AdministratorError>> { std::unexpected(
            AdministratorError { kind, message, number }) };
    };
    this->run("echo written");
    this->m_bench.givePassword();
    const auto ends = this->endsOfRun();
    ASSERT_EQ(ends.size(), 1U);
    EXPECT_EQ(ends[0], "written");
    this->run("(echo reason >&2); exit 3");
    this->m_bench.givePassword();
    EXPECT_EQ(this->endsOfRun(), error(Kind::scriptFailed, "reason", 3));
    this->run("echo written");
    this->m_bench.cancel();
    EXPECT_EQ(this->endsOfRun(), error(Kind::cancelled));
}

TYPED_TEST_P(AdministratorContract, NothingIsToldOnceItHasGone)
{
    this->run("echo written");
    this->m_bench.end();
    this->m_bench.serveForATurn();
    EXPECT_TRUE(this->m_ends.empty());
}

REGISTER_TYPED_TEST_SUITE_P(
    AdministratorContract, EachRunEndsOnceAfterTheCallAsThePasswordAndTheScriptHaveIt, NothingIsToldOnceItHasGone);

}
