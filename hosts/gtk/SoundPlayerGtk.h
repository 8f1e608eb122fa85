#pragma once

#include "gtk/DesktopSound.h"

#include <memory>
#include <string>

struct ca_context;

namespace brevanta {

class Executor;
class SystemLog;

// Plays short sounds by libcanberra (its page "Event sounds", canberra.h), and nothing where there is no sound system.
// From then on ALSA's messages are written nowhere. Made and used on the main thread.
class SoundPlayerGtk {
public:
    // The queue is a serial one of its own, since reaching a sound server can take a while. The log outlives it.
    SoundPlayerGtk(Executor& queue, const std::string& applicationName, SystemLog& log);

    // Begins once and returns at once; whatever goes wrong, nothing is heard, and the first of a row is logged.
    void play(const DesktopSound& sound);

private:
    Executor& m_queue;
    SystemLog& m_log;
    std::shared_ptr<ca_context> m_context; // Null when there is none to be had.
    std::shared_ptr<bool> m_failedLast = std::make_shared<bool>(false); // The queue's alone.
};

}
