#pragma once

#include "base/Executor.h"

#include <functional>
#include <memory>

namespace brevanta {

// A running timer. Destroying it stops it, also from inside its own callback.
class Timer {
public:
    virtual ~Timer() = default;
};

enum class TimerRepeat { once, forever };

// The main thread's loop. Posting is allowed from any thread; everything else belongs to the main thread.
class MainLoop : public Executor {
public:
    // Fires on the main thread `seconds` from now, then every `seconds` again when it repeats; it goes on while a modal
    // alert or panel is open. A repeating timer whose callback was late does not make up for the ticks that it missed.
    // `seconds` below 0, and not-a-number, count as 0. The callback is never called from inside this call.
    [[nodiscard]] virtual std::unique_ptr<Timer> startTimer(
        double seconds, TimerRepeat repeat, std::function<void()> callback)
        = 0;

    [[nodiscard]] virtual bool isMainThread() const = 0;
};

}
