#include "notify/NotificationHelper.h"

#include "platform/NotificationCenter.h"
#include "platform/SystemLog.h"

namespace brevanta {

NotificationHelper::NotificationHelper(NotificationCenter& center, SystemLog& log)
    : m_center(center)
    , m_log(log)
{
}

void NotificationHelper::post(const std::string& title, const std::string& body, const std::string& identifier)
{
    // The log outlives every notification center, so the answer may come after this object has gone.
    m_center.add({ .identifier = identifier, .title = title, .body = body }, [&log = m_log](const auto& result) {
        if (!result)
            log.log("[NotificationHelper] add failed: " + result.error().message);
    });
}

}
