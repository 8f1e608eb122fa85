#pragma once

#include "base/LifeToken.h"

#include <string>

namespace brevanta {

class BlockingStatusDelivery;
class BridgeTable;
class DaemonClient;
class DeviceSetup;
class PageDelivery;
class RemovalShellController;
class SystemLog;
class Updater;
struct BridgeMessage;
struct DocumentMemory;

// What the page asks about the state of the client's parts, and has them do: blocking, device setup, removal, updater.
// Main thread only.
class StateMessages {
public:
    struct Dependencies {
        DaemonClient& daemonClient;
        DeviceSetup& deviceSetup;
        RemovalShellController& removal;
        Updater* updater; // Null when updates are not configured.
        PageDelivery& delivery;
        BlockingStatusDelivery& blockingStatus;
        DocumentMemory& document;
        SystemLog& log;
        std::string version; // Of the application.
    };

    explicit StateMessages(Dependencies dependencies);

    void addSetupAndUpdater(BridgeTable& table);
    void addBlocking(BridgeTable& table);
    void addSetupState(BridgeTable& table);
    void addRemoval(BridgeTable& table);

    // Tells the page when the document has not been told this very state before.
    void removalChanged();
    void deviceSetupChanged();

private:
    enum class Repeat { skip, deliver };

    void performUpdater(const BridgeMessage& message);
    void deliverBlockingStatus();
    void deliverUpdaterState();
    void deliverUnlessKnown(const std::string& script, std::string& lastKey, Repeat repeat);
    void deliverDeviceSetupState(Repeat repeat);
    void deliverRemovalState(Repeat repeat);
    void requestUninstall(const BridgeMessage& message);
    void cancelUninstall(const BridgeMessage& message);

    Dependencies m_dependencies;
    bool m_askingForStatus { false };
    LifeToken m_life;
};

}
