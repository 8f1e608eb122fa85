#pragma once

#include <string_view>

namespace brevanta {

// Where the client says what it does. Any thread may write; lines of different threads are never mixed. A line is text
// without a line feed at its end; line feeds inside it are written as spaces so that one call is one line. Callers
// never pass a token.
class SystemLog {
public:
    virtual ~SystemLog() = default;

    // One line to the system's log. Lines begin with their component's tag, such as "[MenuBar]".
    virtual void log(std::string_view line) = 0;

    // One line to the system's log under a category of its own, such as "WebInspector", which takes the tag's place. A
    // log that has no categories holds the line as it stands.
    virtual void logToCategory(std::string_view category, std::string_view line) = 0;

    // One line, and a line feed, to the process's standard error: the few watchdog lines that carry no tag.
    virtual void writeStandardError(std::string_view line) = 0;
};

}
