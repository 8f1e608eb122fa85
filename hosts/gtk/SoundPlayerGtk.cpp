#include "gtk/SoundPlayerGtk.h"

#include "base/Executor.h"
#include "platform/SystemLog.h"

#include <alsa/asoundlib.h>
#include <canberra.h>

namespace brevanta {

namespace {

// What ALSA says to standard error where there is no sound card, in eight lines for each sound. That nothing is heard
// our log says.
void ignoreAlsaMessage(const char*, int, const char*, int, const char*, ...) { }

std::shared_ptr<ca_context> newContext(const std::string& applicationName)
{
    ca_context* context = nullptr;
    if (ca_context_create(&context) != CA_SUCCESS)
        return nullptr;
    ca_context_change_props(context, CA_PROP_APPLICATION_NAME, applicationName.c_str(), nullptr);
    return { context, [](ca_context* owned) { ca_context_destroy(owned); } };
}

}

SoundPlayerGtk::SoundPlayerGtk(Executor& queue, const std::string& applicationName, SystemLog& log)
    : m_queue(queue)
    , m_log(log)
    , m_context(newContext(applicationName))
{
    snd_lib_error_set_handler(ignoreAlsaMessage); // The process's (alsa-lib's reference, "Error handling").
}

void SoundPlayerGtk::play(const DesktopSound& sound)
{
    if (!m_context)
        return;
    m_queue.post([context = m_context, failedLast = m_failedLast, &log = m_log, sound] {
        constexpr std::uint32_t anyNumber = 0;
        const int result = sound.file.empty()
            ? ca_context_play(context.get(), anyNumber, CA_PROP_EVENT_ID, themeSoundOfNotifications, nullptr)
            : ca_context_play(context.get(), anyNumber, CA_PROP_MEDIA_FILENAME, sound.file.c_str(), nullptr);
        const bool failed = result != CA_SUCCESS;
        if (failed && !*failedLast)
            log.log("[NotificationSounds] the desktop's sound system plays nothing");
        *failedLast = failed;
    });
}

}
