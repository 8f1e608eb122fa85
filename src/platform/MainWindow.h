#pragma once

#include <string>

namespace brevanta {

struct MainWindowLayout {
    std::string title;
    int width { 0 }; // Of the content; points on the Mac, logical pixels elsewhere.
    int height { 0 };

    bool operator==(const MainWindowLayout&) const = default;
};

// The one window of the application. Main thread only. Closing it by its button hides it; the application goes on.
class MainWindow {
public:
    virtual ~MainWindow() = default;

    // Makes the window, hidden: the web view fills it and the placeholder lies over it. Once, after the web view has
    // started and before everything else.
    virtual void build(const MainWindowLayout& layout) = 0;

    // Shows the window in front of the application's others, also one that was minimized, and makes it the one that
    // takes the keyboard.
    virtual void showInFront() = 0;

    virtual void hide() = 0;

    [[nodiscard]] virtual bool isVisible() const = 0;
};

}
