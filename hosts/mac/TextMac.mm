#include "mac/TextMac.h"

namespace brevanta {

NSString* _Nullable stringFromUtf8(std::string_view text)
{
    return [[NSString alloc] initWithBytes:text.data() length:text.size() encoding:NSUTF8StringEncoding];
}

NSString* _Nonnull displayString(std::string_view text)
{
    if (NSString* const string = stringFromUtf8(text))
        return string;
    NSString* const string = [[NSString alloc] initWithBytes:text.data()
                                                      length:text.size()
                                                    encoding:NSISOLatin1StringEncoding];
    return string ? static_cast<NSString* _Nonnull>(string) : @"";
}

std::string utf8FromString(NSString* _Nullable text)
{
    NSData* const bytes = [text dataUsingEncoding:NSUTF8StringEncoding];
    if (!bytes || bytes.length == 0)
        return {};
    return { static_cast<const char*>(bytes.bytes), bytes.length };
}

}
