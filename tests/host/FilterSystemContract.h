#pragma once

#include "platform/FilterSystem.h"

#include <gtest/gtest.h>
#include <vector>

namespace brevanta {

// What holds for every FilterSystem. A bench gives:
//   FilterSystem& system();            with a copy of the extension that an activation would replace
//   void carryOutRequest();            lets the system begin with the request that was made last
//   bool serveUntil(condition);        serves the main loop; false when the condition does not come true
//   void serveForATurn();              serves what is ready now, without waiting
//   void end();                        destroys the system
template <typename Bench> class FilterSystemContract : public testing::Test {
protected:
    void askEverything()
    {
        auto& system = m_bench.system();
        system.loadPreferences([this](const auto&) { ++m_answers[0]; });
        system.enable([this](const auto&) { ++m_answers[1]; });
        system.removeConfiguration([this](const auto&) { ++m_answers[2]; });
        system.queryProperties([this](const auto&) { ++m_answers[3]; });
    }

    void activate(ExtensionReplacement replacement)
    {
        m_bench.system().requestActivation({ .replacing =
                                                 [this, replacement](const auto&, const auto&) {
                                                     ++m_questions;
                                                     return replacement;
                                                 },
            .needsUserApproval = [] {},
            .ended = [this](const auto& end) { m_ends.push_back(end); } });
    }

    using Answers = std::vector<int>;

    Bench m_bench;
    Answers m_answers = Answers(4);
    int m_questions { 0 };
    std::vector<std::expected<ExtensionRequestResult, FilterError>> m_ends;
};

TYPED_TEST_SUITE_P(FilterSystemContract);

TYPED_TEST_P(FilterSystemContract, AnswersEverythingOnceAndAfterTheCall)
{
    this->askEverything();
    EXPECT_EQ(this->m_answers, (std::vector { 0, 0, 0, 0 }));
    EXPECT_TRUE(this->m_bench.serveUntil([this] { return this->m_answers == std::vector { 1, 1, 1, 1 }; }));
    this->m_bench.serveForATurn();
    EXPECT_EQ(this->m_answers, (std::vector { 1, 1, 1, 1 }));
}

TYPED_TEST_P(FilterSystemContract, ACancelledReplacementEndsTheRequestWithItsCode)
{
    this->activate(ExtensionReplacement::cancel);
    this->m_bench.carryOutRequest();
    EXPECT_EQ(this->m_questions, 0) << "not inside the call";
    ASSERT_TRUE(this->m_bench.serveUntil([this] { return !this->m_ends.empty(); }));
    this->m_bench.serveForATurn();
    EXPECT_EQ(this->m_questions, 1);
    ASSERT_EQ(this->m_ends.size(), 1U);
    ASSERT_FALSE(this->m_ends[0]);
    EXPECT_EQ(this->m_ends[0].error().domain, "OSSystemExtensionErrorDomain");
    EXPECT_EQ(this->m_ends[0].error().code, FilterSystem::requestCanceledCode);
}

TYPED_TEST_P(FilterSystemContract, NothingIsToldOnceTheSystemHasGone)
{
    this->askEverything();
    this->activate(ExtensionReplacement::replace);
    this->m_bench.carryOutRequest();
    this->m_bench.end();
    this->m_bench.serveForATurn();
    EXPECT_EQ(this->m_answers, (std::vector { 0, 0, 0, 0 }));
    EXPECT_EQ(this->m_questions, 0);
    EXPECT_TRUE(this->m_ends.empty());
}

REGISTER_TYPED_TEST_SUITE_P(FilterSystemContract, AnswersEverythingOnceAndAfterTheCall,
    ACancelledReplacementEndsTheRequestWithItsCode, NothingIsToldOnceTheSystemHasGone);

}
