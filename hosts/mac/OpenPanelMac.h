#pragma once

#include "mac/CompletionTable.h"
#include "platform/OpenPanel.h"

#include <string>
#include <vector>

namespace brevanta {

class MainWindowMac;

// The system's open panel (documentation page NSOpenPanel). The main loop and the window outlive it.
class OpenPanelMac final : public OpenPanel {
public:
    OpenPanelMac(MainLoop& mainLoop, const MainWindowMac& mainWindow);

    void present(const OpenPanelRequest& request, std::function<void(std::vector<std::string>)> onEnd) override;

private:
    const MainWindowMac& m_mainWindow;
    CompletionTable<std::vector<std::string>> m_completions;
};

}
