#pragma once

#include "gtk/GObjectPtr.h"

#include <functional>
#include <string>

namespace brevanta {

// Whether a name on a message bus has an owner. Main thread only.
class NameOwnerWatch {
public:
    // `onLost` is called by the main loop whenever the owner goes without another one in its place, and once soon
    // after the start when there is none; `onGained` whenever there is an owner, and once soon after the start too.
    NameOwnerWatch(
        GDBusConnection* bus, std::string name, std::function<void()> onLost = {}, std::function<void()> onGained = {});
    ~NameOwnerWatch();
    NameOwnerWatch(const NameOwnerWatch&) = delete;
    NameOwnerWatch& operator=(const NameOwnerWatch&) = delete;

    // As of the last turn of the main loop. Before the first one the bus is asked, for half a second at most; a bus
    // that does not answer counts as no owner.
    [[nodiscard]] bool hasOwner() const;

private:
    enum class Ownership { unknown, owned, free };

    static void nameAppeared(GDBusConnection*, const char* name, const char* owner, gpointer watch);
    static void nameVanished(GDBusConnection*, const char* name, gpointer watch);
    [[nodiscard]] Ownership askBus() const;

    GObjectPtr<GDBusConnection> m_bus;
    std::string m_name;
    std::function<void()> m_onLost;
    std::function<void()> m_onGained;
    mutable Ownership m_ownership { Ownership::unknown };
    unsigned m_watch { 0 };
};

}
