#include "web/WebInspectorSwitch.h"

#include "platform/Clock.h"
#include "platform/MainLoop.h"
#include "platform/SystemLog.h"
#include "platform/UserDefaults.h"
#include "platform/WebView.h"
#include "web/WebInspectorPolicy.h"

namespace brevanta {

namespace {

constexpr auto logCategory = "WebInspector";

WebInspectorPolicy::Stored readStored(const UserDefaults& defaults)
{
    using Kind = WebInspectorPolicy::Stored::Kind;
    const auto stored = defaults.persistent(WebInspectorSwitch::key);
    if (!stored.isStored)
        return {};
    const auto* const date = stored.value ? std::get_if<DefaultsDate>(&*stored.value) : nullptr;
    if (!date)
        return { .kind = Kind::somethingElse };
    return { .kind = Kind::date, .date = date->secondsSince1970 };
}

}

WebInspectorSwitch::WebInspectorSwitch(Dependencies dependencies)
    : m_dependencies(dependencies)
{
    evaluate();
}

WebInspectorSwitch::~WebInspectorSwitch() = default;

void WebInspectorSwitch::evaluate()
{
    const auto now = m_dependencies.clock.wallSeconds();
    const auto decision = WebInspectorPolicy::decide(readStored(m_dependencies.defaults), now);
    if (decision.deleteKey) {
        m_dependencies.defaults.remove(key);
        m_dependencies.log.logToCategory(logCategory, "Web Inspector switch value rejected and removed");
    }
    m_dependencies.webView.setInspectable(decision.onUntil ? Inspectable::yes : Inspectable::no);
    m_dependencies.log.logToCategory(logCategory, decision.onUntil ? "Web Inspector on" : "Web Inspector off");
    m_expiryTimer.reset();
    if (decision.onUntil)
        m_expiryTimer
            = m_dependencies.mainLoop.startTimer(*decision.onUntil - now, TimerRepeat::once, [this] { evaluate(); });
}

}
