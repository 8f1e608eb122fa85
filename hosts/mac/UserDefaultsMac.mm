#include "mac/UserDefaultsMac.h"

#include "mac/TextMac.h"

#import <CoreFoundation/CoreFoundation.h>

namespace brevanta {

namespace {

bool isBoolean(NSNumber* number) { return CFGetTypeID((__bridge CFTypeRef)number) == CFBooleanGetTypeID(); }

bool isFloat(NSNumber* number) { return CFNumberIsFloatType((__bridge CFNumberRef)number); }

// Nothing for a boolean, a fraction, and a whole number outside of 64 bits with a sign.
std::optional<std::int64_t> integerFrom(NSNumber* number)
{
    if (isBoolean(number) || isFloat(number))
        return std::nullopt;
    const std::int64_t value = number.longLongValue;
    if (![number isEqualToNumber:[NSNumber numberWithLongLong:value]])
        return std::nullopt;
    return value;
}

std::optional<DefaultsValue> valueFromNumber(NSNumber* number)
{
    if (isBoolean(number))
        return DefaultsValue { static_cast<bool>(number.boolValue) };
    if (isFloat(number))
        return DefaultsValue { number.doubleValue };
    if (const auto integer = integerFrom(number))
        return DefaultsValue { *integer };
    return std::nullopt;
}

std::optional<DefaultsValue> valueFromArray(NSArray* array)
{
    std::vector<std::int64_t> integers;
    for (id element in array) {
        if (![element isKindOfClass:NSNumber.class])
            return std::nullopt;
        const auto integer = integerFrom(element);
        if (!integer)
            return std::nullopt;
        integers.push_back(*integer);
    }
    return DefaultsValue { std::move(integers) };
}

id _Nullable objectFrom(const DefaultsValue& value)
{
    if (const auto* boolean = std::get_if<bool>(&value))
        return [NSNumber numberWithBool:*boolean];
    if (const auto* integer = std::get_if<std::int64_t>(&value))
        return [NSNumber numberWithLongLong:*integer];
    if (const auto* real = std::get_if<double>(&value))
        return [NSNumber numberWithDouble:*real];
    if (const auto* text = std::get_if<std::string>(&value))
        return stringFromUtf8(*text);
    NSMutableArray* const array = [NSMutableArray array];
    for (const std::int64_t integer : std::get<std::vector<std::int64_t>>(value))
        [array addObject:[NSNumber numberWithLongLong:integer]];
    return array;
}

}

UserDefaultsMac::UserDefaultsMac()
    : m_defaults(NSUserDefaults.standardUserDefaults)
{
}

std::optional<DefaultsValue> UserDefaultsMac::get(std::string_view key) const
{
    if (const auto kept = m_unstorable.find(key); kept != m_unstorable.end())
        return kept->second;
    const id object = [m_defaults objectForKey:displayString(key)];
    if ([object isKindOfClass:NSNumber.class])
        return valueFromNumber(object);
    if ([object isKindOfClass:NSString.class])
        return DefaultsValue { utf8FromString(object) };
    if ([object isKindOfClass:NSArray.class])
        return valueFromArray(object);
    return std::nullopt;
}

void UserDefaultsMac::set(std::string_view key, const DefaultsValue& value)
{
    const id object = objectFrom(value);
    if (!object) {
        m_unstorable.insert_or_assign(std::string(key), value);
        return;
    }
    m_unstorable.erase(std::string(key));
    [m_defaults setObject:object forKey:displayString(key)];
}

void UserDefaultsMac::remove(std::string_view key)
{
    m_unstorable.erase(std::string(key));
    [m_defaults removeObjectForKey:displayString(key)];
}

}
