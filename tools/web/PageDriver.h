#pragma once

#include "web/Answer.h"
#include "web/EventSource.h"
#include "web/GLibPointers.h"

#include <chrono>
#include <cstdint>
#include <list>
#include <map>
#include <set>
#include <string>

namespace brevanta::web {

// Has the page evaluate JavaScript expressions. The page asks /driver/next until it is told the number of an
// expression, loads /driver/script/NUMBER/DOCUMENT as a script (so its policy needs no exception for eval), and posts
// what came of it to /driver/result. A number is told to everybody who asks until the script has been fetched, which
// one page can do once; so a page that has gone meanwhile takes nothing with it. A document that is left says so to
// /driver/left, which is the end of what it has fetched, in whichever order the two requests arrive.
class PageDriver {
public:
    explicit PageDriver(std::chrono::milliseconds patience = std::chrono::seconds(20))
        : m_patience(patience)
    {
    }

    // Answers with the JSON of the result, or with an error when the expression fails or nothing came of it in time.
    void evaluate(std::string expression, Answer);

    // Answers a request below /driver/, now or later.
    void handle(SoupServerMessage*, const std::string& path);

private:
    struct Evaluation {
        std::string expression;
        Answer answer;
        EventSource timer;
        bool wasFetched = false;
        std::string document;
    };
    struct Asker {
        GLibPointer<SoupServerMessage> message;
        EventSource timer;
    };

    void tellNext(SoupServerMessage*);
    void sendScript(SoupServerMessage*, const std::string& numberAndDocument);
    void takeResult(SoupServerMessage*);
    void takeLeaving(SoupServerMessage*);
    void finish(std::uint64_t number, const Result&);

    std::chrono::milliseconds m_patience;
    std::uint64_t m_lastNumber = 0;
    std::map<std::uint64_t, Evaluation> m_evaluations;
    std::list<Asker> m_askers;
    std::set<std::string> m_leftDocuments;
};

}
