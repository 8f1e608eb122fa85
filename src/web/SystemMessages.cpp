#include "web/SystemMessages.h"

#include "notify/NoticeLanguage.h"
#include "notify/SystemNotificationCenterClient.h"
#include "platform/SystemLog.h"
#include "platform/UserDefaults.h"
#include "platform/Workspace.h"
#include "web/BridgeTable.h"
#include "web/DocumentMemory.h"
#include "web/PageDelivery.h"
#include "web/PageScripts.h"

#include <algorithm>
#include <array>
#include <utility>

namespace brevanta {

namespace {

constexpr auto notificationPane = "x-apple.systempreferences:com.apple.Notifications-Settings.extension";
constexpr std::array<std::string_view, 3> languages { "en", "zh-Hans", "es" };

std::string_view wordFor(NotificationAuthorization authorization)
{
    switch (authorization) {
    case NotificationAuthorization::notDetermined:
        return "notDetermined";
    case NotificationAuthorization::denied:
        return "denied";
    case NotificationAuthorization::authorized:
        return "authorized";
    case NotificationAuthorization::provisional:
        break;
    }
    return "provisional";
}

}

SystemMessages::SystemMessages(Dependencies dependencies)
    : m_dependencies(std::move(dependencies))
{
}

void SystemMessages::addNotificationsAndStore(BridgeTable& table)
{
    const auto tell = [this] {
        return m_life.guard([this](NotificationAuthorization now) { tellAuthorization(now, Repeat::deliver); });
    };
    table.add("get_notification_status",
        [this, tell](const auto&) { m_dependencies.notifications.getAuthorization(tell()); });
    table.add("request_notification_permission",
        [this, tell](const auto&) { m_dependencies.notifications.requestAuthorization(tell()); });
    table.add("open_notification_settings", [this](const auto&) {
        openFirst({ notificationPane + ("?id=" + m_dependencies.bundleIdentifier), notificationPane });
    });
    table.add("open_extension_store", [this](const auto&) { openExtensionStore(); });
}

void SystemMessages::addLocalePreference(BridgeTable& table)
{
    table.add("set_locale_preference", [this](const auto& message) { setLocalePreference(message); });
}

void SystemMessages::applicationDidBecomeActive()
{
    m_dependencies.notifications.getAuthorization(
        m_life.guard([this](NotificationAuthorization now) { tellAuthorization(now, Repeat::skip); }));
}

void SystemMessages::tellAuthorization(NotificationAuthorization authorization, Repeat repeat)
{
    // A page that has never asked does not care.
    auto& told = m_dependencies.document.lastAuthorization;
    if (repeat == Repeat::skip && (!told || told == authorization))
        return;
    if (m_dependencies.delivery.deliver(PageScripts::notificationStatus(wordFor(authorization)))
        == ScriptDelivery::handedOver)
        told = authorization;
}

void SystemMessages::openFirst(std::vector<std::string> urls)
{
    if (urls.empty())
        return m_dependencies.log.log("[WebViewBridge] open_notification_settings: System Settings refused every URL");
    const auto url = urls.front();
    urls.erase(urls.begin());
    m_dependencies.workspace.openUrl(url, m_life.guard([this, rest = std::move(urls)](OpenOutcome outcome) {
        if (outcome == OpenOutcome::refused)
            openFirst(rest);
    }));
}

void SystemMessages::openExtensionStore()
{
    m_dependencies.workspace.openUrl(m_dependencies.extensionStoreUrl, m_life.guard([this](OpenOutcome outcome) {
        if (outcome == OpenOutcome::refused)
            m_dependencies.log.log("[WebViewBridge] open_extension_store: the default browser refused the store URL");
    }));
}

void SystemMessages::setLocalePreference(const BridgeMessage& message)
{
    const auto preference = message.text("preference");
    if (preference == "system")
        return m_dependencies.defaults.remove(appLanguageKey);
    if (!preference || std::ranges::find(languages, *preference) == languages.end())
        return m_dependencies.log.log("[WebViewBridge] set_locale_preference: ignoring an unsupported value");
    m_dependencies.defaults.set(appLanguageKey, *preference);
}

}
