#pragma once

#include "base/LifeToken.h"

#include <functional>
#include <string>
#include <vector>

namespace brevanta {

class BridgeTable;
class OpenPanel;
class PageDelivery;
class SystemLog;
class Workspace;
struct BridgeMessage;

// Lets the user pick an application for the page. One panel at a time; main thread only.
class ApplicationPicker {
public:
    struct Dependencies {
        OpenPanel& panel;
        Workspace& workspace;
        PageDelivery& delivery;
        SystemLog& log;
        std::function<void()> bringWindowForward;
        std::string applicationsFolder; // Where the panel begins.
    };

    explicit ApplicationPicker(Dependencies dependencies);

    void addTo(BridgeTable& table);

private:
    void pick(const BridgeMessage& message);
    void picked(const std::vector<std::string>& paths);

    Dependencies m_dependencies;
    bool m_isOpen { false };
    LifeToken m_life;
};

}
