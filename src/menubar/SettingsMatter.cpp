#include "menubar/SettingsMatter.h"

namespace brevanta {

SettingsMatter settingsMatterOf(FilterStatus filter)
{
    switch (filter) {
    case FilterStatus::awaitingApproval:
        return SettingsMatter::awaited;
    case FilterStatus::off:
        return SettingsMatter::switchedOff;
    case FilterStatus::on:
        return SettingsMatter::none;
    case FilterStatus::checking:
    case FilterStatus::cantCheck:
        break;
    }
    return SettingsMatter::unknown;
}

SettingsMatter settingsMatterOf(const DaemonHealth::State& service)
{
    if (std::holds_alternative<DaemonHealth::TurnedOffInSettings>(service))
        return SettingsMatter::switchedOff;
    const bool saysNothing = std::holds_alternative<DaemonHealth::Checking>(service)
        || std::holds_alternative<DaemonHealth::Starting>(service);
    return saysNothing ? SettingsMatter::unknown : SettingsMatter::none;
}

bool hasSettled(SettingsMatter before, SettingsMatter now)
{
    switch (now) {
    case SettingsMatter::none:
        return before == SettingsMatter::awaited || before == SettingsMatter::switchedOff;
    case SettingsMatter::switchedOff:
        return before == SettingsMatter::awaited;
    case SettingsMatter::unknown:
    case SettingsMatter::awaited:
        break;
    }
    return false;
}

}
