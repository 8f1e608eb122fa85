#include "tour/Scene.h"

#include "tour/DesktopPanel.h"

namespace brevanta::tour {

using functional::ChildProcess;
using functional::Milliseconds;

static constexpr Milliseconds patience { 10000 };

Scene::Scene(const functional::VirtualDisplay& display, std::string outputDirectory)
    : m_display(display)
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

bool Scene::takePicture(const std::string& name) const
{
    // A spinning wheel never stands still, so the picture is taken in any case.
    (void)m_display.awaitStillness(Milliseconds(2000));
    return run({ "import", "-window", "root", m_outputDirectory + "/" + name + ".png" });
}

bool Scene::takePictureOf(const functional::MappedWindow& window, const std::string& name) const
{
    (void)m_display.awaitStillness(Milliseconds(2000));
    return run({ "import", "-window", std::to_string(window.id), m_outputDirectory + "/" + name + ".png" });
}

bool Scene::openStatusMenu() const
{
    const auto windowCount = m_display.windows().size();
    const auto x = std::to_string(functional::VirtualDisplay::width - DesktopPanel::height / 2);
    const auto y = std::to_string(DesktopPanel::height / 2);
    return run({ "xdotool", "mousemove", x, y, "click", "1" })
        && functional::awaitByAsking([&] { return m_display.windows().size() > windowCount; }, patience);
}

bool Scene::closeStatusMenu() const
{
    const auto windowCount = m_display.windows().size();
    return run({ "xdotool", "key", "Escape" })
        && functional::awaitByAsking([&] { return m_display.windows().size() < windowCount; }, patience);
}

}
