#include "diagnosis/Findings.h"

namespace brevanta {

namespace {

bool isOfTheDisk(WriteObstacle obstacle)
{
    return obstacle == WriteObstacle::fullVolume || obstacle == WriteObstacle::readOnlyVolume;
}

// All begin with an ASCII letter.
std::string capitalized(std::string text)
{
    text.front() = static_cast<char>(text.front() - 'a' + 'A');
    return text;
}

bool isSaidOfTheDisk(const DiagnosisFacts& facts)
{
    return (facts.sharedState && isOfTheDisk(facts.sharedState->folder.obstacle))
        || isOfTheDisk(facts.preferences.folder.obstacle);
}

}

Finding good(Subject subject, std::string_view state, std::string text)
{
    return { .key = std::move(subject.key),
        .title = std::move(subject.title),
        .state = std::string(state),
        .text = std::move(text),
        .remedy = {} };
}

Finding notice(Subject subject, std::string_view state, std::string text)
{
    auto finding = good(std::move(subject), state, std::move(text));
    finding.verdict = FindingVerdict::notice;
    return finding;
}

Finding needsUser(Subject subject, std::string_view state, std::string text, std::string remedy)
{
    auto finding = good(std::move(subject), state, std::move(text));
    finding.verdict = FindingVerdict::needsUser;
    finding.remedy = std::move(remedy);
    return finding;
}

bool isBeingRemoved(const DiagnosisFacts& facts)
{
    switch (facts.removal.stage) {
    case DiagnosisFacts::Removal::Stage::none:
    case DiagnosisFacts::Removal::Stage::pending:
        return false;
    case DiagnosisFacts::Removal::Stage::finishing:
    case DiagnosisFacts::Removal::Stage::overdue:
    case DiagnosisFacts::Removal::Stage::atWork:
    case DiagnosisFacts::Removal::Stage::cutShort:
        break;
    }
    return true;
}

Finding unlessBeingRemoved(Finding finding, const DiagnosisFacts& facts)
{
    if (finding.verdict != FindingVerdict::needsUser || !isBeingRemoved(facts))
        return finding;
    finding.verdict = FindingVerdict::notice;
    finding.text += "; nothing to do about it before the removal has ended";
    finding.remedy.clear();
    return finding;
}

std::string openAnew(const DiagnosisFacts& facts, std::string_view what)
{
    if (!facts.clientRuns)
        return "Quit Brevanta if it runs, and open it: it " + std::string(what) + " at its start.";
    return std::string(*facts.clientRuns ? "Quit Brevanta, and open it again: it " : "Open Brevanta: it ")
        + std::string(what) + " at its start.";
}

std::string withPassword(const DiagnosisFacts& facts, std::string what)
{
    return facts.isAdministrator == false ? "Ask an administrator of this Mac to type the password: " + what
                                          : capitalized(std::move(what));
}

std::string unlessAdministrators(const DiagnosisFacts& facts, std::string what)
{
    return facts.isAdministrator == false ? asAdministrator(facts, what) : capitalized(std::move(what));
}

std::string asAdministrator(const DiagnosisFacts& facts, const std::string& what)
{
    return (facts.isAdministrator == true ? "As an administrator, " : "Ask an administrator of this Mac to ") + what;
}

ObstacleWords obstacleWords(const DiagnosisFacts& facts, const FolderFacts& folder, const std::filesystem::path& wanted)
{
    const auto place = folder.place.string();
    switch (folder.obstacle) {
    case WriteObstacle::ownPermissions:
        return { "notPermitted", "the folder " + place + " takes no files",
            "Allow your user to write in the folder " + place + "." };
    case WriteObstacle::permissions:
        // Nobody is to be let into a folder of the system's for the sake of one within it.
        return { "notPermitted", "your user may not write in " + place,
            asAdministrator(facts,
                folder.place == wanted ? "let your user write in the folder " + place + "."
                                       : "make the folder " + wanted.string() + " and give it to your user.") };
    case WriteObstacle::noFolder:
        return { "noFolder", place + " is no folder",
            "Move " + place + " to another place: Brevanta makes a folder there." };
    case WriteObstacle::readOnlyVolume:
        return {
            "readOnly", "the disk with " + place + " is read-only",
            isSaidOfTheDisk(facts) ? ""
                                   : "Make the disk with " + place
                    + " writable again: restart this Mac, and check the disk with Disk Utility if that does not help."
        };
    case WriteObstacle::fullVolume:
        return { "full", "the disk with " + place + " is full",
            isSaidOfTheDisk(facts) ? "" : "Make room on the disk with " + place + ": nothing can be stored there." };
    case WriteObstacle::none:
    case WriteObstacle::unknown:
        break;
    }
    return {};
}

}
