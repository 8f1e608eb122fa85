#include "mac/JsonMac.h"

namespace brevanta {

namespace {

constexpr int deepest = 512; // As deep as NSJSONSerialization reads.
constexpr NSUInteger largest = 1 << 24; // Values and characters, together.

// NSJSONSerialization walks a value that contains itself until the stack ends, and writes a value once for each place
// that refers to it.
class SizeCheck {
public:
    bool accepts(id value, int depth)
    {
        if (depth > deepest || !take(1))
            return false;
        if ([value isKindOfClass:NSString.class])
            return take(static_cast<NSString*>(value).length);
        if ([value isKindOfClass:NSArray.class])
            return acceptsEach(value, depth);
        if ([value isKindOfClass:NSDictionary.class])
            return acceptsEntries(value, depth);
        return true;
    }

private:
    bool acceptsEach(NSArray* array, int depth)
    {
        for (id element in array) {
            if (!accepts(element, depth + 1))
                return false;
        }
        return true;
    }

    bool acceptsEntries(NSDictionary* dictionary, int depth)
    {
        for (id key in dictionary) {
            if (!accepts(key, depth + 1) || !accepts([dictionary objectForKey:key], depth + 1))
                return false;
        }
        return true;
    }

    bool take(NSUInteger count)
    {
        if (count > m_left)
            return false;
        m_left -= count;
        return true;
    }

    NSUInteger m_left { largest };
};

}

std::optional<std::string> jsonFromObject(id _Nullable object)
{
    if (!object)
        return std::nullopt;
    const id value = static_cast<id _Nonnull>(object);
    if (!SizeCheck().accepts(value, 0))
        return std::nullopt;
    // In an array, since the check takes containers only; what does not pass it would raise an exception below.
    if (![NSJSONSerialization isValidJSONObject:[NSArray arrayWithObject:value]])
        return std::nullopt;
    NSData* const bytes = [NSJSONSerialization dataWithJSONObject:value
                                                          options:NSJSONWritingFragmentsAllowed
                                                            error:nil];
    if (!bytes || bytes.length == 0)
        return std::nullopt;
    return std::string(static_cast<const char*>(bytes.bytes), bytes.length);
}

id _Nullable objectFromJson(const std::string& json)
{
    NSData* const bytes = [NSData dataWithBytes:json.data() length:json.size()];
    return [NSJSONSerialization JSONObjectWithData:bytes options:NSJSONReadingFragmentsAllowed error:nil];
}

}
