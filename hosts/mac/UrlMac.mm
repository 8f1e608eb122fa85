#include "mac/UrlMac.h"

#include "mac/TextMac.h"

namespace brevanta {

namespace {

std::optional<std::string> part(NSString* _Nullable text)
{
    return text ? std::optional(utf8FromString(text)) : std::nullopt;
}

}

std::optional<Url> urlFrom(NSURL* _Nullable url)
{
    NSURL* const whole = url.absoluteURL; // A URL may be kept as a part and the base that it is relative to.
    std::string text = utf8FromString(whole.absoluteString);
    if (text.empty())
        return std::nullopt;
    NSNumber* const port = whole.port;
    return Url {
        .text = std::move(text),
        .scheme = utf8FromString(whole.scheme),
        .user = part(whole.user),
        .password = part(whole.password),
        .host = utf8FromString(whole.host),
        .port = port ? std::optional<int>(port.intValue) : std::nullopt,
        .path = utf8FromString(whole.path),
    };
}

NSURL* _Nullable absoluteUrlFromText(NSString* _Nullable text)
{
    if (!text)
        return nil;
    NSURL* const url = [NSURL URLWithString:static_cast<NSString* _Nonnull>(text)];
    return url.scheme.length > 0 ? url : nil;
}

}
