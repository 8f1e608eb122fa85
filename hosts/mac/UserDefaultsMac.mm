#include "mac/UserDefaultsMac.h"

#include "mac/TextMac.h"

#import <CoreFoundation/CoreFoundation.h>

#include <cmath>

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

std::optional<DefaultsValue> valueFrom(id _Nullable object)
{
    if ([object isKindOfClass:NSNumber.class])
        return valueFromNumber(object);
    if ([object isKindOfClass:NSString.class])
        return DefaultsValue { utf8FromString(object) };
    if ([object isKindOfClass:NSArray.class])
        return valueFromArray(object);
    if ([object isKindOfClass:NSDate.class])
        return DefaultsValue { DefaultsDate { static_cast<NSDate*>(object).timeIntervalSince1970 } };
    return std::nullopt;
}

// Nil for what cannot be stored.
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
    if (const auto* date = std::get_if<DefaultsDate>(&value)) {
        const double seconds = date->secondsSince1970;
        return std::isfinite(seconds) ? [NSDate dateWithTimeIntervalSince1970:seconds] : nil;
    }
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
    return valueFrom([m_defaults objectForKey:displayString(key)]);
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

StoredDefault UserDefaultsMac::persistent(std::string_view key) const
{
    NSString* const domain = NSBundle.mainBundle.bundleIdentifier;
    if (!domain)
        return {};
    const id object = [[m_defaults persistentDomainForName:domain] objectForKey:displayString(key)];
    return { .isStored = object != nil, .value = valueFrom(object) };
}

void UserDefaultsMac::remove(std::string_view key)
{
    m_unstorable.erase(std::string(key));
    [m_defaults removeObjectForKey:displayString(key)];
}

}
