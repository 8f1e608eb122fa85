#include "tour/Tour.h"

#include <cstdio>

using namespace brevanta;

static constexpr int sawEverything = 0;
static constexpr int missedSomething = 1;
static constexpr int misused = 2;

static constexpr auto help = R"(Usage: brevanta-tour --output DIRECTORY

Plays a tour of the client on a display and a bus of its own, against the stand-in service, and tells what is seen.
Pictures of the screen and the client's log are left in the directory.

Exit status: 0 everything was seen that should be, 1 something was not, 2 wrong command line.
)";

// Pictures and logs of an earlier tour would be taken for this one's.
static bool prepareOutput(const std::filesystem::path& directory)
{
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    for (std::filesystem::directory_iterator entry(directory, error), end; !error && entry != end; ++entry) {
        if (entry->path().extension() == ".png" || entry->path().filename() == "client.log")
            std::filesystem::remove(entry->path(), error);
    }
    return !error;
}

int main(int argumentCount, char** arguments)
{
    const std::vector<std::string> words(arguments + 1, arguments + argumentCount);
    if (words.size() == 1 && (words[0] == "--help" || words[0] == "-h")) {
        std::fputs(help, stdout);
        return sawEverything;
    }
    if (words.size() != 2 || words[0] != "--output") {
        std::fputs(help, stderr);
        return misused;
    }
    if (!prepareOutput(words[1])) {
        std::fprintf(stderr, "brevanta-tour: %s cannot be written to\n", words[1].c_str());
        return missedSomething;
    }
    tour::TourReport report;
    tour::Tour tour(words[1], report);
    if (const auto played = tour.play(); !played)
        report.sees(false, "the tour to its end: " + played.error());
    report.finish();
    return report.sawEverything() ? sawEverything : missedSomething;
}
