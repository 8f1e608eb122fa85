#include "app/StaleCopies.h"

#include "platform/Clock.h"
#include "platform/ProgramRunner.h"

#include <ranges>
#include <utility>

namespace brevanta {

namespace {

constexpr double mostSeconds = 10;
constexpr auto searchProgram = "usr/bin/mdfind";
constexpr auto registryProgram = "System/Library/Frameworks/CoreServices.framework/Versions/Current/Frameworks/"
                                 "LaunchServices.framework/Versions/Current/Support/lsregister";

std::filesystem::path plain(const std::filesystem::path& path)
{
    auto normal = path.lexically_normal();
    return normal.has_filename() ? normal : normal.parent_path();
}

}

std::vector<std::string> otherCopies(std::string_view mdfindOutput, const std::filesystem::path& runningBundle)
{
    std::vector<std::string> copies;
    for (const auto part : std::views::split(mdfindOutput, '\n')) {
        const std::string_view line(part.begin(), part.end());
        if (line.starts_with('/') && plain(line) != plain(runningBundle))
            copies.emplace_back(line);
    }
    return copies;
}

StaleCopies::StaleCopies(Dependencies dependencies)
    : m_dependencies(std::move(dependencies))
{
}

void StaleCopies::begin()
{
    if (m_dependencies.bundle.empty())
        return;
    m_deadline = m_dependencies.clock.continuousSeconds() + mostSeconds;
    m_dependencies.programs.run((m_dependencies.root / searchProgram).string(),
        { "kMDItemCFBundleIdentifier == '" + m_dependencies.bundleIdentifier + "'" }, mostSeconds,
        m_life.guard([this](const std::expected<std::string, ProgramError>& output) {
            if (!output)
                return;
            const auto copies = otherCopies(*output, m_dependencies.bundle);
            m_copies.assign(copies.begin(), copies.end());
            forgetNext();
        }));
}

void StaleCopies::forgetNext()
{
    const double left = secondsLeft();
    if (m_copies.empty() || left <= 0)
        return;
    const auto copy = std::move(m_copies.front());
    m_copies.pop_front();
    m_dependencies.programs.run((m_dependencies.root / registryProgram).string(), { "-u", copy }, left,
        m_life.guard([this](const std::expected<std::string, ProgramError>&) { forgetNext(); }));
}

double StaleCopies::secondsLeft() const { return m_deadline - m_dependencies.clock.continuousSeconds(); }

}
