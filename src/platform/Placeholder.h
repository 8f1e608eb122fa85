#pragma once

#include <functional>
#include <string>

namespace brevanta {

struct PlaceholderContent {
    std::string label;
    std::string button; // Its title; empty for none.

    bool operator==(const PlaceholderContent&) const = default;
};

// Covers the web view while there is no usable page: the application's icon, a label and a button, one below the other
// in the middle. Main thread only. Visible from the start, and empty until the first `show`.
class Placeholder {
public:
    virtual ~Placeholder() = default;

    virtual void show(const PlaceholderContent& content) = 0;
    virtual void hide() = 0;

    // Called when the user presses the button, never from inside a method of this class. Replaces the handler given
    // before; an empty one ends the calls.
    virtual void setButtonHandler(std::function<void()> handler) = 0;
};

}
