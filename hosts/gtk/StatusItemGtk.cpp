#include "gtk/StatusItemGtk.h"

#include "base/Executor.h"
#include "gtk/GLibText.h"
#include "gtk/WindowMenuGtk.h"

#include <string_view>
#include <utility>

namespace brevanta {

namespace {

const char* iconName(StatusImage image)
{
    switch (image) {
    case StatusImage::open:
        return "brevanta-open-symbolic";
    case StatusImage::block:
        return "brevanta-block-symbolic";
    case StatusImage::unknown:
        break;
    }
    return "brevanta-unknown-symbolic";
}

void dropDeprecation(const char* domain, GLogLevelFlags level, const char* message, void*)
{
    if (!std::string_view(message).contains("is deprecated"))
        g_log_default_handler(domain, level, message, nullptr);
}

// From version 0.5.94 on the library calls itself deprecated, to the compiler and in each process, in favour of one
// that older systems lack. Whoever runs the client can do nothing about that.
AppIndicator* newIndicator(const std::filesystem::path& images)
{
    constexpr auto domain = "libayatana-appindicator";
    const auto handler = g_log_set_handler(domain, G_LOG_LEVEL_WARNING, dropDeprecation, nullptr);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    auto* const indicator = app_indicator_new_with_path(
        "brevanta", iconName(StatusImage::unknown), APP_INDICATOR_CATEGORY_APPLICATION_STATUS, images.c_str());
#pragma GCC diagnostic pop
    g_log_remove_handler(domain, handler);
    return indicator;
}

}

StatusItemGtk::StatusItemGtk(
    GDBusConnection* bus, const std::filesystem::path& images, Executor& mainThread, WindowMenuGtk& windowMenu)
    : m_mainThread(mainThread)
    , m_windowMenu(windowMenu)
    , m_watcher(
          bus, "org.kde.StatusNotifierWatcher", [this] { hostChanged(); }, [this] { hostChanged(); })
    , m_handler(std::make_shared<std::function<void(MenuItemId)>>())
    , m_menu([this](MenuItemId id) { reportLater(id); })
    , m_indicator(newIndicator(images))
{
    m_windowMenu.setChoiceHandler([this](MenuItemId id) { reportLater(id); });
}

StatusItemGtk::~StatusItemGtk() { m_windowMenu.setChoiceHandler({}); }

void StatusItemGtk::show(const StatusItemContent& content)
{
    if (m_shown == content)
        return;
    m_menu.update(content.menu);
    m_windowMenu.show(content.menu);
    if (!m_shown || m_shown->image != content.image || m_shown->description != content.description) {
        const auto description = validUtf8(content.description);
        app_indicator_set_icon_full(m_indicator.get(), iconName(content.image), description.c_str());
        app_indicator_set_title(m_indicator.get(), description.c_str());
    }
    if (!m_shown) {
        app_indicator_set_menu(m_indicator.get(), m_menu.widget());
        app_indicator_set_status(m_indicator.get(), APP_INDICATOR_STATUS_ACTIVE);
    }
    m_shown = content;
}

void StatusItemGtk::setChoiceHandler(std::function<void(MenuItemId)> handler) { *m_handler = std::move(handler); }

StatusItemVisibility StatusItemGtk::visibility() const
{
    return m_watcher.hasOwner() ? StatusItemVisibility::visible : StatusItemVisibility::noHost;
}

void StatusItemGtk::hostChanged()
{
    m_windowMenu.setVisibility(
        visibility() == StatusItemVisibility::visible ? WindowMenuVisibility::hidden : WindowMenuVisibility::shown);
}

void StatusItemGtk::reportLater(MenuItemId id)
{
    // What is chosen may change the menu, whose row is in the middle of its signal now.
    m_mainThread.post([weakHandler = std::weak_ptr(m_handler), id] {
        const auto handler = weakHandler.lock();
        if (!handler || !*handler)
            return;
        const auto report = *handler; // The handler may be replaced while it runs.
        report(id);
    });
}

}
