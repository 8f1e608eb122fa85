#pragma once

#include "support/SignalWatch.h"

namespace brevanta::functional {

struct StatusNotifierContent {
    std::string title; // What a panel shows as the tooltip.
    std::string iconName;
    std::string iconDescription; // What a screen reader says.
};

// The client's status item as a panel sees it.
class StatusNotifier {
public:
    StatusNotifier(const PrivateBus& bus, std::string owner);

    [[nodiscard]] std::expected<StatusNotifierContent, std::string> read() const;
    [[nodiscard]] bool awaitDescription(const std::string& text, Milliseconds within = Milliseconds(10000));

private:
    const PrivateBus& m_bus;
    std::string m_owner;
    SignalWatch m_changes;
};

}
