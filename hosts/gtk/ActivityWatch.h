#pragma once

#include <functional>

namespace brevanta {

// Tells when one of this process's windows becomes the one that takes the keyboard and none of them was before, dialogs
// included. Main thread only.
class ActivityWatch {
public:
    // `onActive` is called by the main loop.
    explicit ActivityWatch(std::function<void()> onActive);
    ~ActivityWatch();
    ActivityWatch(const ActivityWatch&) = delete;
    ActivityWatch& operator=(const ActivityWatch&) = delete;

private:
    void focusMoved();
    void look();

    std::function<void()> m_onActive;
    unsigned m_focusIn { 0 };
    unsigned m_focusOut { 0 };
    unsigned long m_inHook { 0 };
    unsigned long m_outHook { 0 };
    unsigned m_look { 0 }; // The source that will look; 0 for none.
    bool m_isActive { false };
};

}
