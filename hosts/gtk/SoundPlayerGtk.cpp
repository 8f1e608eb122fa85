#include "gtk/SoundPlayerGtk.h"

#include "base/Executor.h"

#include <canberra.h>

namespace brevanta {

namespace {

std::shared_ptr<ca_context> newContext(const std::string& applicationName)
{
    ca_context* context = nullptr;
    if (ca_context_create(&context) != CA_SUCCESS)
        return nullptr;
    ca_context_change_props(context, CA_PROP_APPLICATION_NAME, applicationName.c_str(), nullptr);
    return { context, [](ca_context* owned) { ca_context_destroy(owned); } };
}

}

SoundPlayerGtk::SoundPlayerGtk(Executor& queue, const std::string& applicationName)
    : m_queue(queue)
    , m_context(newContext(applicationName))
{
}

void SoundPlayerGtk::play(const DesktopSound& sound)
{
    if (!m_context)
        return;
    m_queue.post([context = m_context, sound] {
        constexpr std::uint32_t anyNumber = 0;
        if (sound.file.empty())
            ca_context_play(context.get(), anyNumber, CA_PROP_EVENT_ID, themeSoundOfNotifications, nullptr);
        else
            ca_context_play(context.get(), anyNumber, CA_PROP_MEDIA_FILENAME, sound.file.c_str(), nullptr);
    });
}

}
