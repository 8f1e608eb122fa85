#pragma once

#include "gtk/GObjectPtr.h"
#include "gtk/NameOwnerWatch.h"
#include "gtk/StatusMenuGtk.h"
#include "platform/StatusItem.h"

#include <filesystem>
#include <libayatana-appindicator/app-indicator.h>
#include <memory>
#include <optional>

namespace brevanta {

class Executor;
class WindowMenuGtk;

// A StatusNotifierItem by libayatana-appindicator, of the id "brevanta". There is no tooltip: the description is the
// title and the image's accessible description. It can be seen when org.kde.StatusNotifierWatcher has an owner.
class StatusItemGtk final : public StatusItem {
public:
    // `images` holds the status images, named brevanta-...-symbolic.svg. The window's menu outlives this object.
    StatusItemGtk(
        GDBusConnection* bus, const std::filesystem::path& images, Executor& mainThread, WindowMenuGtk& windowMenu);
    ~StatusItemGtk() override;
    StatusItemGtk(const StatusItemGtk&) = delete;
    StatusItemGtk& operator=(const StatusItemGtk&) = delete;

    void show(const StatusItemContent& content) override;
    void setChoiceHandler(std::function<void(MenuItemId)> handler) override;
    [[nodiscard]] StatusItemVisibility visibility() const override;

private:
    void reportLater(MenuItemId id);
    void hostChanged();

    Executor& m_mainThread;
    WindowMenuGtk& m_windowMenu;
    NameOwnerWatch m_watcher;
    std::shared_ptr<std::function<void(MenuItemId)>> m_handler;
    StatusMenuGtk m_menu;
    GObjectPtr<AppIndicator> m_indicator;
    std::optional<StatusItemContent> m_shown;
};

}
