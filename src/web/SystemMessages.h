#pragma once

#include "base/LifeToken.h"
#include "platform/NotificationCenter.h"

#include <string>
#include <vector>

namespace brevanta {

class BridgeTable;
class PageDelivery;
class SystemLog;
class SystemNotificationCenterClient;
class UserDefaults;
class Workspace;
struct BridgeMessage;
struct DocumentMemory;

// What the page asks of the system around the client: the permission to notify, settings, the browser extension's
// page, the language. Main thread only.
class SystemMessages {
public:
    struct Dependencies {
        SystemNotificationCenterClient& notifications;
        Workspace& workspace;
        UserDefaults& defaults;
        PageDelivery& delivery;
        DocumentMemory& document;
        SystemLog& log;
        std::string bundleIdentifier;
        std::string extensionStoreUrl;
    };

    explicit SystemMessages(Dependencies dependencies);

    void addNotificationsAndStore(BridgeTable& table);
    void addLocalePreference(BridgeTable& table);

    // The user may have been in the settings meanwhile: the page is told when the permission is another now.
    void applicationDidBecomeActive();

private:
    enum class Repeat { skip, deliver };

    void tellAuthorization(NotificationAuthorization authorization, Repeat repeat);
    void openFirst(std::vector<std::string> urls);
    void openExtensionStore();
    void setLocalePreference(const BridgeMessage& message);

    Dependencies m_dependencies;
    LifeToken m_life;
};

}
