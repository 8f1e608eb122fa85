#pragma once

#include "base/LifeToken.h"

#include <deque>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace brevanta {

class Clock;
class ProgramRunner;

// The bundles in what mdfind(1) wrote, one path in each line, but for the running one. What is no absolute path counts
// as none.
[[nodiscard]] std::vector<std::string> otherCopies(
    std::string_view mdfindOutput, const std::filesystem::path& runningBundle);

// Makes the system forget other copies of the application, which would otherwise be started in this one's place by a
// link or a notification. Main thread only.
class StaleCopies {
public:
    struct Dependencies {
        ProgramRunner& programs;
        Clock& clock;
        std::filesystem::path root; // Stands for "/" in the paths of the programs.
        std::filesystem::path bundle; // The running one; while it is empty nothing is done.
        std::string bundleIdentifier;
    };

    explicit StaleCopies(Dependencies dependencies);

    // Once. Takes ten seconds at most; what fails or is left then stays as it is.
    void begin();

private:
    void forgetNext();
    [[nodiscard]] double secondsLeft() const;

    Dependencies m_dependencies;
    double m_deadline { 0 }; // In continuous seconds.
    std::deque<std::string> m_copies;
    LifeToken m_life;
};

}
