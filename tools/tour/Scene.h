#pragma once

#include "tour/Desktop.h"

namespace brevanta::tour {

// The hand and the eye of the tour: the pointer, the keyboard, and pictures of the screen. A picture is not taken of
// what is covered or cut off; the error says what is.
class Scene {
public:
    Scene(const functional::VirtualDisplay&, const Desktop&, std::string outputDirectory);

    // Of the whole screen. A dialog may lie over a window.
    [[nodiscard]] std::expected<void, std::string> takePicture(const std::string& name) const;
    // Of the part of the screen that the windows take up, with nothing else in it.
    [[nodiscard]] std::expected<void, std::string> takePictureOf(
        const std::vector<DesktopWindow>& wanted, const std::string& name) const;

    // Gives the window the keyboard, as a click on it does.
    [[nodiscard]] bool activate(const DesktopWindow&) const;

    // Opens the menu of the status item at the right end of the panel, and closes it again.
    [[nodiscard]] bool openStatusMenu() const;
    [[nodiscard]] bool closeStatusMenu() const;

private:
    [[nodiscard]] bool run(std::vector<std::string> arguments) const;
    [[nodiscard]] std::expected<void, std::string> savePart(const Rectangle&, const std::string& name) const;

    const functional::VirtualDisplay& m_display;
    const Desktop& m_desktop;
    std::string m_outputDirectory;
};

}
