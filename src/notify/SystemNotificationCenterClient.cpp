#include "notify/SystemNotificationCenterClient.h"

#include "platform/MainLoop.h"

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
    watchPending();
    // An answer of before may be outdated: the user can allow notifications in the system's settings at any time.
    if (m_authorizationRequest == AuthorizationRequest::none)
        requestAuthorization([](NotificationAuthorization) { });
}

void SystemNotificationCenterClient::getAuthorization(OnAuthorization onEnd)
{
    m_center.getAuthorization(m_life.guard(std::move(onEnd)));
}

void SystemNotificationCenterClient::requestAuthorization(OnAuthorization onEnd)
{
    m_authorizationAwaiters.push_back(std::move(onEnd));
    if (std::exchange(m_authorizationRequest, AuthorizationRequest::underWay) == AuthorizationRequest::none)
        m_center.requestAuthorization(
            m_life.guard([this](NotificationAuthorization authorization) { authorizationAnswered(authorization); }));
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
    m_center.add(notification, m_life.guard([onEnd](const std::expected<void, NotificationError>& result) {
        if (result)
            onEnd({});
        else
            onEnd(std::unexpected(PostError { PostError::Kind::failed, result.error().message }));
    }));
}

void SystemNotificationCenterClient::authorizationAnswered(NotificationAuthorization authorization)
{
    m_authorizationRequest = AuthorizationRequest::none;
    m_isAllowed = allows(authorization);
    dropOverdue(); // The machine may have slept past the timer.
    m_pendingTimer.reset();
    for (const auto& post : std::exchange(m_pendingPosts, {})) {
        if (m_isAllowed)
            addOrDrop(post);
        else
            post.onEnd(std::unexpected(PostError { PostError::Kind::denied }));
    }
    for (const auto& awaiter : std::exchange(m_authorizationAwaiters, {}))
        awaiter(authorization);
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
    const auto seconds = m_pendingPosts.front().waitsUntil - m_monotonicNow();
    m_pendingTimer = m_mainLoop.startTimer(seconds, TimerRepeat::once, [this] {
        m_pendingTimer.reset();
        dropOverdue();
        watchPending();
    });
}

}
