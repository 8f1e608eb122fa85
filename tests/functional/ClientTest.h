#pragma once

#include "support/ClientBench.h"

#include <array>
#include <gtest/gtest.h>
#include <string_view>

namespace brevanta::functional {

// The tokens that services and pages of the tests have. None of them may stand in a log.
inline constexpr std::array<std::string_view, 6> testTokens { "stand-in-token", "tok-plain", "tok-bound", "tok-another",
    "tok-of-nobody", "eyJ-a-token-that-nobody-may-read-7f3c" };

// Gives each test a client of its own with all that is around it. A test that needs something else at the start
// derives from it and hands its options to the constructor.
class ClientTest : public ::testing::Test {
protected:
    explicit ClientTest(ClientBenchOptions options = { .preparations = { "energy 42" } });

    void SetUp() override;
    void TearDown() override;

    // Tells the stand-in service something that it must accept.
    void tell(const std::string& command);

    // The line of the menu that carries the balance.
    [[nodiscard]] testing::AssertionResult showsLine(const std::string& label, Milliseconds within = patience);
    [[nodiscard]] testing::AssertionResult showsDescription(const std::string& text, Milliseconds within = patience);
    [[nodiscard]] testing::AssertionResult showsWindows(std::size_t count, Milliseconds within = patience);

    // The labels of what is shown, "-" for a separator.
    [[nodiscard]] std::vector<std::string> visibleLabels();
    void click(const std::string& label);
    // The client ends with status 0 and leaves neither a process nor its name on the bus.
    void expectCleanExit(Milliseconds within);

    [[nodiscard]] ClientBench& bench() { return m_bench; }
    [[nodiscard]] StandInService& service() { return m_bench.service(); }

    static constexpr Milliseconds patience { 10000 };
    static constexpr auto notBlocking = "Brevanta — not blocking";
    static constexpr auto blocking = "Brevanta — blocking";
    static constexpr auto statusUnknown = "Brevanta — status unknown";

private:
    ClientBench m_bench;
};

}
