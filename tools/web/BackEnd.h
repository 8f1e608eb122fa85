#pragma once

#include <libsoup/soup.h>
#include <string>
#include <utility>

namespace brevanta::web {

// Plays the back end at /day: there the web application has what the client does not tell it, such as the active task
// and why it is blocked. All of that is the stand-in service's, which is asked through its control socket.
class BackEnd {
public:
    explicit BackEnd(std::string serviceControlPath)
        : m_serviceControlPath(std::move(serviceControlPath))
    {
    }

    // Answers with an object of the status reply's keys, of which those that the reply does not have are left out; with
    // status 503 while there is no service. Of a long list the object has the beginning, and under "KEY_count" its
    // length. The server goes on meanwhile.
    void handle(SoupServerMessage*) const;

private:
    std::string m_serviceControlPath;
};

}
