#pragma once

#include <cstdint>
#include <functional>

namespace brevanta {

class UserDefaults;

enum class SignedOut { no, yes };

// Whether notices may be shown to the user who is signed in now. Each sign-out and sign-in begins a new generation, so
// that what belongs to an older one can be told and dropped. Kept in the user defaults, under
// "habitReminders.signedOut", "habitReminders.deliveryGeneration" and "habitReminders.logoutSequence"; a value of
// another shape counts as absent. Main thread only.
class DeliveryGeneration {
public:
    explicit DeliveryGeneration(UserDefaults& defaults)
        : m_defaults(defaults)
    {
    }

    // 0 at first.
    [[nodiscard]] std::int64_t current() const;

    // Changes with every sign-out. 0 at first.
    [[nodiscard]] std::int64_t logoutSequence() const;

    // Nobody has signed out since, and the generation is the current one.
    [[nodiscard]] bool allows(std::int64_t generation) const;

    // Asks `allows` of the generation at the moment at which it is called.
    [[nodiscard]] std::function<bool()> whileAllowed(std::int64_t generation) const
    {
        return [current = *this, generation] { return current.allows(generation); };
    }

    // Without any check.
    void signedOut(SignedOut flag);

    // False, and nothing changes, when somebody signed out after the sequence was read.
    bool signedIn(std::int64_t expectedLogoutSequence);

private:
    UserDefaults& m_defaults;
};

}
