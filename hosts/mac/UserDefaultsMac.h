#pragma once

#include "platform/UserDefaults.h"

#import <Foundation/Foundation.h>

#include <functional>
#include <map>
#include <string>

namespace brevanta {

// The application's domain of the user defaults (documentation page NSUserDefaults).
class UserDefaultsMac final : public UserDefaults {
public:
    UserDefaultsMac();

    [[nodiscard]] std::optional<DefaultsValue> get(std::string_view key) const override;
    void set(std::string_view key, const DefaultsValue& value) override;
    [[nodiscard]] StoredDefault persistent(std::string_view key) const override;
    void remove(std::string_view key) override;

private:
    NSUserDefaults* m_defaults;
    std::map<std::string, DefaultsValue, std::less<>> m_unstorable; // What cannot be stored, kept for this process.
};

}
