#include "notify/DeliveryGeneration.h"

#include "platform/UserDefaults.h"

#include <limits>

namespace brevanta {

namespace {

constexpr auto signedOutKey = "habitReminders.signedOut";
constexpr auto generationKey = "habitReminders.deliveryGeneration";
constexpr auto logoutSequenceKey = "habitReminders.logoutSequence";

std::int64_t numberAt(const UserDefaults& defaults, const char* key)
{
    const auto stored = defaults.get(key);
    const auto* const number = stored ? std::get_if<std::int64_t>(&*stored) : nullptr;
    return number ? *number : 0;
}

// Only a difference counts, so the numbers may begin anew.
void increase(UserDefaults& defaults, const char* key)
{
    const auto number = numberAt(defaults, key);
    defaults.set(key, number == std::numeric_limits<std::int64_t>::max() ? std::int64_t { 1 } : number + 1);
}

}

std::int64_t DeliveryGeneration::current() const { return numberAt(m_defaults, generationKey); }

std::int64_t DeliveryGeneration::logoutSequence() const { return numberAt(m_defaults, logoutSequenceKey); }

bool DeliveryGeneration::allows(std::int64_t generation) const
{
    const auto signedOut = m_defaults.get(signedOutKey);
    return signedOut != DefaultsValue(true) && generation == current();
}

void DeliveryGeneration::signedOut(SignedOut flag)
{
    m_defaults.set(signedOutKey, flag == SignedOut::yes);
    increase(m_defaults, generationKey);
    if (flag == SignedOut::yes)
        increase(m_defaults, logoutSequenceKey);
}

bool DeliveryGeneration::signedIn(std::int64_t expectedLogoutSequence)
{
    if (logoutSequence() != expectedLogoutSequence)
        return false;
    signedOut(SignedOut::no);
    return true;
}

}
