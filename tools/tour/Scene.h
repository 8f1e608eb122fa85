#pragma once

#include "support/VirtualDisplay.h"

namespace brevanta::tour {

// The hand and the eye of the tour: the pointer, the keyboard, and pictures of the whole screen.
class Scene {
public:
    Scene(const functional::VirtualDisplay&, std::string outputDirectory);

    // False when the picture could not be taken.
    [[nodiscard]] bool takePicture(const std::string& name) const;
    [[nodiscard]] bool takePictureOf(const functional::MappedWindow& window, const std::string& name) const;

    // Opens the menu of the status item at the right end of the panel, and closes it again.
    [[nodiscard]] bool openStatusMenu() const;
    [[nodiscard]] bool closeStatusMenu() const;

private:
    [[nodiscard]] bool run(std::vector<std::string> arguments) const;

    const functional::VirtualDisplay& m_display;
    std::string m_outputDirectory;
};

}
