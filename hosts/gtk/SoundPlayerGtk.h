#pragma once

#include "gtk/DesktopSound.h"

#include <memory>
#include <string>

struct ca_context;

namespace brevanta {

class Executor;

// Plays short sounds by libcanberra (its page "Event sounds", canberra.h), and nothing where there is no sound system.
// Made and used on the main thread.
class SoundPlayerGtk {
public:
    // The queue is one of its own, since reaching a sound server can take a while.
    SoundPlayerGtk(Executor& queue, const std::string& applicationName);

    // Begins once and returns at once; whatever goes wrong, nothing is heard.
    void play(const DesktopSound& sound);

private:
    Executor& m_queue;
    std::shared_ptr<ca_context> m_context; // Null when there is none to be had.
};

}
