#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace brevanta {

struct DefaultsDate {
    double secondsSince1970 { 0 };

    bool operator==(const DefaultsDate&) const = default;
};

using DefaultsValue = std::variant<bool, std::int64_t, double, std::string, std::vector<std::int64_t>, DefaultsDate>;

// What the persistent domain holds under a key: a value may be stored there that is of none of the six shapes.
struct StoredDefault {
    bool isStored { false };
    std::optional<DefaultsValue> value;

    bool operator==(const StoredDefault&) const = default;
};

// The application's small persistent store. Main thread only.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;

    // The stored value; nothing when the key is absent or holds something of none of the six shapes. A boolean is
    // never read as a number, nor a number as a boolean.
    [[nodiscard]] virtual std::optional<DefaultsValue> get(std::string_view key) const = 0;

    // Stores the value so that the next `get`, and the next start of the application, sees it. A write that fails
    // leaves what is stored as it was, and is made up for once it can be, at the latest when this object goes.
    virtual void set(std::string_view key, const DefaultsValue& value) = 0;

    // What the application's persistent domain holds now, also when another process has just changed it; what was
    // given on the command line does not count.
    [[nodiscard]] virtual StoredDefault persistent(std::string_view key) const = 0;

    // Removing an absent key does nothing.
    virtual void remove(std::string_view key) = 0;
};

}
