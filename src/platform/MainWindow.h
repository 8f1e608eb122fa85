#pragma once

namespace brevanta {

// The one window of the application. Main thread only. Closing it by its button hides it; the application goes on.
class MainWindow {
public:
    virtual ~MainWindow() = default;

    // Shows the window in front of the application's others and makes it the one that takes the keyboard.
    virtual void showInFront() = 0;

    virtual void hide() = 0;

    [[nodiscard]] virtual bool isVisible() const = 0;
};

}
