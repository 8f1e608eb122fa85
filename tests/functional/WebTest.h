#pragma once

#include "ClientTest.h"

namespace brevanta::functional {

// A client whose page is driven through the engine.
class WebTest : public ClientTest {
protected:
    explicit WebTest(ClientBenchOptions options = {})
        : ClientTest(std::move(options))
    {
    }

    [[nodiscard]] StandInWeb& web() { return bench().web(); }
    void tellWeb(const std::string& command);

    // The demo application is there, and takes what it is told.
    [[nodiscard]] testing::AssertionResult showsPage();

    // The client's log has the text, or gets it in time.
    [[nodiscard]] testing::AssertionResult logs(const std::string& text, Milliseconds within = pagePatience);
    [[nodiscard]] std::size_t lineCount(const std::string& text);
    // Exactly so many lines have the text, at once or in time.
    [[nodiscard]] testing::AssertionResult awaitLines(const std::string& text, std::size_t count);

    // From now on the page keeps the events of these names in window.heard.
    void listenFor(const std::string& event);
    // Posts a message from the page's main frame.
    void post(const std::string& message);

    // Kills the process that holds the page, and waits until it has gone.
    void killWebProcess();

    // What the client handed to the user's browser, one URL each.
    [[nodiscard]] std::vector<std::string> openedOutside();

    static constexpr Milliseconds pagePatience { 20000 };
};

}
