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
        return "[NotificationHelper] notifications are not allowed"
            + (error.message.empty() ? "" : ": " + error.message);
    case PostError::Kind::unanswered:
        return dropped + "no answer in time whether notifications are allowed";
    case PostError::Kind::late:
        return dropped + "its deadline has passed";
    case PostError::Kind::unwanted:
        return dropped + "somebody has signed in or out since";
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
    m_center.post(std::move(notification), std::move(limits),
        m_life.guard([this, identifier](const auto& result) { postEnded(identifier, result); }));
}

void NotificationHelper::postEnded(const std::string& identifier, const std::expected<void, PostError>& result)
{
    if (result)
        m_denialIsLogged = false;
    else if (result.error().kind != PostError::Kind::denied || !std::exchange(m_denialIsLogged, true))
        m_log.log(describe(result.error(), identifier));
}

}
