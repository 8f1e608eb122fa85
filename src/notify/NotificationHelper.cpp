#include "notify/NotificationHelper.h"

#include "notify/NotificationSoundGesture.h"
#include "platform/SystemLog.h"

#include <utility>

namespace brevanta {

namespace {

std::string describe(const PostError& error, const std::string& identifier)
{
    const auto dropped = "[NotificationHelper] dropped " + identifier + ": ";
    switch (error.kind) {
    case PostError::Kind::failed:
        break;
    case PostError::Kind::denied:
        return dropped + "notifications are not allowed";
    case PostError::Kind::unanswered:
        return dropped + "no answer in time whether notifications are allowed";
    case PostError::Kind::late:
        return dropped + "its deadline has passed";
    case PostError::Kind::unwanted:
        return dropped + "the user has changed";
    }
    return "[NotificationHelper] add failed: " + error.message;
}

}

NotificationHelper::NotificationHelper(SystemNotificationCenterClient& center, SystemLog& log)
    : m_center(center)
    , m_log(log)
{
}

void NotificationHelper::post(const std::string& title, const std::string& body, const std::string& identifier,
    NotificationUserInfo userInfo, PostLimits limits)
{
    const auto gesture = gestureForNotification(identifier);
    Notification notification { .identifier = identifier,
        .title = title,
        .body = body,
        .sound = gesture ? std::optional(soundFileName(*gesture)) : std::nullopt,
        .userInfo = std::move(userInfo) };
    // The log outlives the center, so the answer may come after this object has gone.
    m_center.post(std::move(notification), std::move(limits), [&log = m_log, identifier](const auto& result) {
        if (!result)
            log.log(describe(result.error(), identifier));
    });
}

}
