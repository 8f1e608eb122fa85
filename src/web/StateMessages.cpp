#include "web/StateMessages.h"

#include "daemon/DaemonClient.h"
#include "install/RemovalShellController.h"
#include "platform/SystemLog.h"
#include "setup/DeviceSetup.h"
#include "update/UpdaterPolicy.h"
#include "web/BlockingStatusDelivery.h"
#include "web/BridgeTable.h"
#include "web/DocumentMemory.h"
#include "web/PageDelivery.h"
#include "web/PageScripts.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <utility>

namespace brevanta {

namespace {

constexpr double actionLimit = 9007199254740992; // 2^53: up to here a double holds each whole number.

// A number without a fraction, at least 0 and below 2^53. Engines differ in how they write a whole number.
std::optional<std::int64_t> actionIdOf(const BridgeMessage& message)
{
    const auto found = message.body.find("actionId");
    if (found == message.body.end() || !found->is_number())
        return std::nullopt;
    const auto number = found->get<double>();
    if (!(number >= 0 && number < actionLimit) || std::trunc(number) != number)
        return std::nullopt;
    return static_cast<std::int64_t>(number);
}

}

StateMessages::StateMessages(Dependencies dependencies)
    : m_dependencies(std::move(dependencies))
{
}

void StateMessages::addSetupAndUpdater(BridgeTable& table)
{
    table.addMatching([](const std::string& type) { return type.starts_with("setup_"); },
        [this](const auto& message) { m_dependencies.deviceSetup.perform(message.type); });
    table.addMatching([](const std::string& type) { return UpdaterPolicy::command(type).has_value(); },
        [this](const auto& message) { performUpdater(message); });
}

void StateMessages::addBlocking(BridgeTable& table)
{
    table.add("get_blocking_status", [this](const auto&) { deliverBlockingStatus(); });
}

void StateMessages::addSetupState(BridgeTable& table)
{
    table.add("get_device_setup_state", [this](const auto&) { deliverDeviceSetupState(Repeat::deliver); });
}

void StateMessages::addRemoval(BridgeTable& table)
{
    table.add("get_removal_state", [this](const auto&) { deliverRemovalState(Repeat::deliver); });
    table.add("request_uninstall", [this](const auto& message) { requestUninstall(message); });
    table.add("cancel_uninstall", [this](const auto& message) { cancelUninstall(message); });
    table.add("remove_network_filter", [this](const auto&) {
        if (m_dependencies.deviceSetup.isFilterRemovable())
            return m_dependencies.deviceSetup.removeFilter();
        m_dependencies.log.log(
            "[WebViewBridge] remove_network_filter ignored: a blocking service is installed or there is no filter");
    });
}

void StateMessages::removalChanged() { deliverRemovalState(Repeat::skip); }

void StateMessages::deviceSetupChanged()
{
    deliverDeviceSetupState(Repeat::skip);
    // Whether the filter may be removed is part of the removal's state; a page that never heard of that is not told.
    if (!m_dependencies.document.lastRemovalKey.empty())
        deliverRemovalState(Repeat::skip);
}

void StateMessages::performUpdater(const BridgeMessage& message)
{
    if (const auto command = UpdaterPolicy::command(message.type))
        UpdaterPolicy::perform(*command, m_dependencies.updater);
    deliverUpdaterState();
}

// Asks the service rather than telling what was true at the last poll. A page that asks again before the answer is
// there gets the one answer.
void StateMessages::deliverBlockingStatus()
{
    if (std::exchange(m_askingForStatus, true))
        return;
    m_dependencies.daemonClient.getStatus(std::nullopt, m_life.guard([this](const auto& status) {
        m_askingForStatus = false;
        if (status)
            m_dependencies.blockingStatus.push(*status);
        else
            m_dependencies.log.log("[WebViewBridge] get_blocking_status: " + describe(status.error()));
    }));
}

void StateMessages::deliverUpdaterState()
{
    m_dependencies.delivery.deliver(
        PageScripts::updaterState(UpdaterPolicy::state(m_dependencies.updater, m_dependencies.version)));
}

void StateMessages::deliverDeviceSetupState(Repeat repeat)
{
    deliverUnlessKnown(PageScripts::deviceSetupState(m_dependencies.deviceSetup.state()),
        m_dependencies.document.lastDeviceSetupKey, repeat);
}

void StateMessages::deliverRemovalState(Repeat repeat)
{
    const auto state = m_dependencies.removal.shell().state(m_dependencies.deviceSetup.isFilterRemovable());
    deliverUnlessKnown(PageScripts::removalState(state), m_dependencies.document.lastRemovalKey, repeat);
}

void StateMessages::deliverUnlessKnown(const std::string& script, std::string& lastKey, Repeat repeat)
{
    if (repeat == Repeat::skip && lastKey == script)
        return;
    if (m_dependencies.delivery.deliver(script) == ScriptDelivery::handedOver)
        lastKey = script;
}

void StateMessages::requestUninstall(const BridgeMessage& message)
{
    m_dependencies.removal.requestRemoval(message.text("account").value_or(""));
}

void StateMessages::cancelUninstall(const BridgeMessage& message)
{
    const auto actionId = actionIdOf(message);
    if (!actionId)
        return m_dependencies.log.log("[Removal] cancel_uninstall ignored: no account or no action");
    m_dependencies.removal.cancelRemoval(*actionId, message.text("account").value_or(""));
}

}
