#include "web/ApplicationPicker.h"

#include "base/Base64.h"
#include "base/JsonWriter.h"
#include "base/Text.h"
#include "platform/OpenPanel.h"
#include "platform/SystemLog.h"
#include "platform/Workspace.h"
#include "web/BridgeTable.h"
#include "web/PageDelivery.h"
#include "web/PageScripts.h"

#include <filesystem>
#include <utility>

namespace brevanta {

namespace {

constexpr int iconPixels = 64;

std::string nameOf(const ApplicationFacts& application, const std::string& path)
{
    if (application.displayName)
        return *application.displayName;
    if (application.name)
        return *application.name;
    return std::filesystem::path(path).stem().string();
}

}

ApplicationPicker::ApplicationPicker(Dependencies dependencies)
    : m_dependencies(std::move(dependencies))
{
}

void ApplicationPicker::addTo(BridgeTable& table)
{
    table.add("pick_app", [this](const auto& message) { pick(message); });
}

void ApplicationPicker::pick(const BridgeMessage& message)
{
    const auto platform = message.body.find("platform");
    if (platform != message.body.end() && *platform != "macos")
        return m_dependencies.log.log("[WebViewBridge] Ignoring pick_app for non-macOS platform: "
            + clipped(message.text("platform").value_or(json::scriptText(*platform)), maxLoggedBytes));
    if (m_isOpen)
        return m_dependencies.log.log("[WebViewBridge] pick_app: a picker is already open");
    m_dependencies.bringWindowForward();
    m_isOpen = true;
    m_dependencies.panel.present({ .kind = OpenPanelKind::applications,
                                     .title = "Select an Application",
                                     .directory = m_dependencies.applicationsFolder,
                                     .allowsMultiple = false,
                                     .allowsDirectories = false },
        m_life.guard([this](const std::vector<std::string>& paths) { picked(paths); }));
}

void ApplicationPicker::picked(const std::vector<std::string>& paths)
{
    m_isOpen = false;
    if (paths.empty())
        return;
    const auto& path = paths.front();
    const auto application = m_dependencies.workspace.applicationAt(path);
    if (!application)
        return;
    const auto icon = m_dependencies.workspace.iconPng(path, iconPixels);
    m_dependencies.delivery.deliver(PageScripts::appPicked(application->bundleIdentifier, nameOf(*application, path),
        icon.empty() ? std::string() : "data:image/png;base64," + base64(icon)));
}

}
