#include "notify/SystemNotificationCenterClient.h"

#include "platform/MainLoop.h"

#include <algorithm>
#include <utility>

namespace brevanta {

namespace {

bool allows(NotificationAuthorization authorization)
{
    return authorization == NotificationAuthorization::authorized
        || authorization == NotificationAuthorization::provisional;
}

}

SystemNotificationCenterClient::SystemNotificationCenterClient(
    NotificationCenter& center, MainLoop& mainLoop, std::function<double()> monotonicNow)
    : m_center(center)
    , m_mainLoop(mainLoop)
    , m_monotonicNow(std::move(monotonicNow))
{
}

SystemNotificationCenterClient::~SystemNotificationCenterClient() { m_center.setResponseHandler({}); }

void SystemNotificationCenterClient::post(Notification notification, PostLimits limits, OnPosted onEnd)
{
    PendingPost post { .notification = std::move(notification),
        .limits = std::move(limits),
        .onEnd = std::move(onEnd),
        .waitsUntil = m_monotonicNow() + longestWait };
    if (m_isAllowed)
        return addOrDrop(post);
    m_pendingPosts.push_back(std::move(post));
    // An answer of before may be outdated: the user can allow notifications in the system's settings at any time.
    ask();
    watchPending();
}

void SystemNotificationCenterClient::getAuthorization(OnAuthorization onEnd)
{
    m_center.getAuthorization(m_life.guard([this, onEnd = std::move(onEnd)](NotificationAuthorization authorization) {
        // The user may decide in the system's settings, whatever becomes of the request.
        m_isAllowed = allows(authorization);
        if (m_isAllowed)
            authorizationAnswered({ .authorization = authorization });
        onEnd(authorization);
    }));
}

void SystemNotificationCenterClient::requestAuthorization(OnAuthorization onEnd)
{
    m_authorizationAwaiters.push_back(std::move(onEnd));
    ask();
}

void SystemNotificationCenterClient::ask()
{
    const auto now = m_monotonicNow();
    if (m_authorizationRequest && now < *m_authorizationRequest + longestWait)
        return;
    m_authorizationRequest = now;
    m_center.requestAuthorization(
        m_life.guard([this](const NotificationAuthorizationAnswer& answer) { authorizationAnswered(answer); }));
}

void SystemNotificationCenterClient::setClient(std::function<void(const NotificationResponse&)> client)
{
    m_client = std::move(client);
    if (!m_client)
        return m_center.setResponseHandler({});
    m_center.setResponseHandler([this](const NotificationResponse& response) { m_client(response); });
}

void SystemNotificationCenterClient::addOrDrop(const PendingPost& post)
{
    const auto& [notification, limits, onEnd, waitsUntil] = post;
    if (limits.deadline && m_monotonicNow() > *limits.deadline)
        return onEnd(std::unexpected(PostError { PostError::Kind::late }));
    if (limits.stillWanted && !limits.stillWanted())
        return onEnd(std::unexpected(PostError { PostError::Kind::unwanted }));
    m_center.add(notification, m_life.guard([this, onEnd](const std::expected<void, NotificationError>& result) {
        if (result)
            return onEnd({});
        m_isAllowed = false; // The next one asks: the user may have taken the permission away.
        onEnd(std::unexpected(PostError { PostError::Kind::failed, result.error().message }));
    }));
}

void SystemNotificationCenterClient::authorizationAnswered(const NotificationAuthorizationAnswer& answer)
{
    m_authorizationRequest.reset();
    m_isAllowed = allows(answer.authorization);
    dropOverdue(); // The machine may have slept past the timer.
    m_pendingTimer.reset();
    for (const auto& post : std::exchange(m_pendingPosts, {})) {
        if (m_isAllowed)
            addOrDrop(post);
        else
            post.onEnd(std::unexpected(PostError { PostError::Kind::denied, answer.error }));
    }
    for (const auto& awaiter : std::exchange(m_authorizationAwaiters, {}))
        awaiter(answer.authorization);
}

void SystemNotificationCenterClient::dropOverdue()
{
    while (!m_pendingPosts.empty() && m_monotonicNow() >= m_pendingPosts.front().waitsUntil) {
        const auto onEnd = std::move(m_pendingPosts.front().onEnd);
        m_pendingPosts.pop_front();
        onEnd(std::unexpected(PostError { PostError::Kind::unanswered }));
    }
}

void SystemNotificationCenterClient::watchPending()
{
    if (m_pendingTimer || m_pendingPosts.empty())
        return;
    const auto next = std::min(m_pendingPosts.front().waitsUntil, *m_authorizationRequest + longestWait);
    m_pendingTimer = m_mainLoop.startTimer(next - m_monotonicNow(), TimerRepeat::once, [this] {
        m_pendingTimer.reset();
        dropOverdue();
        if (!m_pendingPosts.empty())
            ask();
        watchPending();
    });
}

}
