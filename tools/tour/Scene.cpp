#include "tour/Scene.h"

#include <algorithm>

namespace brevanta::tour {

using functional::ChildProcess;
using functional::Milliseconds;

static constexpr Milliseconds patience { 10000 };
static constexpr Rectangle screen { 0, 0, Desktop::size.width, Desktop::size.height };
static constexpr int margin = 14; // Of a picture around its windows: room for their shadows.

Scene::Scene(const functional::VirtualDisplay& display, const Desktop& desktop, std::string outputDirectory)
    : m_display(display)
    , m_desktop(desktop)
    , m_outputDirectory(std::move(outputDirectory))
{
}

bool Scene::run(std::vector<std::string> arguments) const
{
    auto environment = functional::neutralEnvironment();
    environment.push_back("DISPLAY=" + m_display.name());
    const auto process
        = ChildProcess::start({ .arguments = std::move(arguments), .environment = std::move(environment) });
    return process && (*process)->awaitExit(patience) == 0;
}

static std::string nameOf(const DesktopWindow& window)
{
    switch (window.kind) {
    case WindowKind::menu:
        return "the menu";
    case WindowKind::notice:
        return "a notice";
    default:
        return '"' + window.window.title + '"';
    }
}

static bool mayLieOver(const DesktopWindow& one, const DesktopWindow& other)
{
    return one.kind == WindowKind::dialog && other.kind == WindowKind::ordinary;
}

// What is wrong with a picture of the windows, of which some may lie over others.
static std::expected<void, std::string> checkPlaces(const std::vector<DesktopWindow>& windows)
{
    for (auto one = windows.begin(); one != windows.end(); ++one) {
        if (!screen.contains(one->place))
            return std::unexpected(nameOf(*one) + " is cut off by the screen's edge");
        const auto other = std::find_if(std::next(one), windows.end(), [&](const DesktopWindow& candidate) {
            return candidate.place.intersects(one->place) && !mayLieOver(*one, candidate)
                && !mayLieOver(candidate, *one);
        });
        if (other != windows.end())
            return std::unexpected(nameOf(*one) + " and " + nameOf(*other) + " are at the same place");
    }
    return {};
}

std::expected<void, std::string> Scene::savePart(const Rectangle& part, const std::string& name) const
{
    const auto geometry = std::to_string(part.right - part.left) + "x" + std::to_string(part.bottom - part.top) + "+"
        + std::to_string(part.left) + "+" + std::to_string(part.top);
    if (!run({ "import", "-window", "root", "-crop", geometry, "+repage", m_outputDirectory + "/" + name + ".png" }))
        return std::unexpected("the picture cannot be saved");
    return {};
}

std::expected<void, std::string> Scene::takePicture(const std::string& name) const
{
    // A spinning wheel never stands still, so the picture is taken in any case.
    (void)m_display.awaitStillness(Milliseconds(2000));
    const auto windows = m_desktop.windows().all();
    if (auto saved = savePart(screen, name); !saved)
        return saved;
    return checkPlaces(windows);
}

std::expected<void, std::string> Scene::takePictureOf(
    const std::vector<DesktopWindow>& wanted, const std::string& name) const
{
    (void)m_display.awaitStillness(Milliseconds(2000));
    if (wanted.empty())
        return std::unexpected("there is nothing to be seen");
    auto part = wanted.front().place;
    for (const auto& window : wanted)
        part = part.unitedWith(window.place);
    part = part.grownBy(margin);
    auto windows = m_desktop.windows().all();
    if (auto saved = savePart(part, name); !saved)
        return saved;
    if (!screen.contains(part))
        return std::unexpected(nameOf(wanted.front()) + " is too close to the screen's edge");
    std::erase_if(windows, [&](const DesktopWindow& window) { return !window.place.intersects(part); });
    if (windows.size() != wanted.size())
        return std::unexpected("something else is in the picture");
    return checkPlaces(windows);
}

bool Scene::activate(const DesktopWindow& window) const
{
    return run({ "xdotool", "windowactivate", "--sync", std::to_string(window.window.id) });
}

bool Scene::openStatusMenu() const
{
    const auto x = std::to_string(Desktop::size.width - Desktop::panelHeight / 2);
    const auto y = std::to_string(Desktop::panelHeight / 2);
    return run({ "xdotool", "mousemove", x, y, "click", "1" })
        && m_desktop.windows().awaitKind(WindowKind::menu, 1, patience);
}

bool Scene::closeStatusMenu() const
{
    // Away from the panel the pointer calls for no tooltip.
    const auto bottom = std::to_string(Desktop::size.height - 1);
    return run({ "xdotool", "key", "Escape", "mousemove", "0", bottom })
        && m_desktop.windows().awaitKind(WindowKind::menu, 0, patience);
}

}
