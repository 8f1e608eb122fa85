#include "mac/CrashReporterMac.h"

#include "mac/TextMac.h"

#import <Foundation/Foundation.h>
#import <Sentry/Sentry.h>

#include <memory>
#include <utility>

NS_ASSUME_NONNULL_BEGIN

namespace brevanta {

namespace {

// Property lists are trees, but what else an application puts into a report may contain itself.
constexpr int deepest = 32;

// Has every text of a report pass the scrubber. Any thread.
class ReportTexts {
public:
    explicit ReportTexts(CrashTextScrubber scrub)
        : m_scrub(std::move(scrub))
    {
    }

    void scrubEvent(SentryEvent* event) const
    {
        if (SentryMessage* const message = event.message)
            event.message = [[SentryMessage alloc] initWithFormatted:text(message.formatted)];
        for (SentryException* exception in event.exceptions)
            scrubException(exception);
        for (SentryBreadcrumb* breadcrumb in event.breadcrumbs)
            scrubBreadcrumb(breadcrumb);
        if (SentryRequest* const request = event.request)
            scrubRequest(request);
        event.transaction = textOrNil(event.transaction);
        event.extra = dictionaryOrNil(event.extra);
        event.tags = dictionaryOrNil(event.tags);
        event.context = dictionaryOrNil(event.context);
        event.serverName = nil; // The name that the user gave this computer.
    }

    void scrubBreadcrumb(SentryBreadcrumb* breadcrumb) const
    {
        breadcrumb.message = textOrNil(breadcrumb.message);
        breadcrumb.data = dictionaryOrNil(breadcrumb.data);
    }

private:
    void scrubException(SentryException* exception) const
    {
        exception.value = textOrNil(exception.value);
        SentryMechanism* const mechanism = exception.mechanism;
        mechanism.desc = textOrNil(mechanism.desc);
        mechanism.data = dictionaryOrNil(mechanism.data);
    }

    void scrubRequest(SentryRequest* request) const
    {
        request.url = textOrNil(request.url);
        request.headers = dictionaryOrNil(request.headers);
        request.queryString = nil;
        request.fragment = nil;
        request.cookies = nil;
    }

    NSString* text(NSString* value, const std::string& key = {}) const
    {
        return displayString(m_scrub(key, utf8FromString(value)));
    }

    NSString* _Nullable textOrNil(NSString* _Nullable value) const
    {
        return value ? text(static_cast<NSString* _Nonnull>(value)) : nil;
    }

    NSDictionary* _Nullable dictionaryOrNil(NSDictionary* _Nullable value) const
    {
        return value ? dictionary(static_cast<NSDictionary* _Nonnull>(value), {}, deepest) : nil;
    }

    NSDictionary* dictionary(NSDictionary* value, const std::string& key, int depth) const
    {
        NSMutableDictionary* const scrubbed = [NSMutableDictionary dictionary];
        for (id name in value) {
            NSString* const entry = [name description];
            const auto inner = key.empty() ? utf8FromString(entry) : key + '.' + utf8FromString(entry);
            if (const id element = [value objectForKey:name])
                [scrubbed setObject:any(element, inner, depth - 1) forKey:text(entry)];
        }
        return scrubbed;
    }

    NSArray* array(NSArray* value, const std::string& key, int depth) const
    {
        NSMutableArray* const scrubbed = [NSMutableArray array];
        for (id element in value)
            [scrubbed addObject:any(element, key, depth - 1)];
        return scrubbed;
    }

    id any(id value, const std::string& key, int depth) const
    {
        if (depth <= 0)
            return @"";
        if ([value isKindOfClass:NSDictionary.class])
            return dictionary(value, key, depth);
        if ([value isKindOfClass:NSArray.class])
            return array(value, key, depth);
        NSString* const description = [value description];
        NSString* const scrubbed = text(description, key);
        const bool isHarmlessNumber = [value isKindOfClass:NSNumber.class] && [scrubbed isEqualToString:description];
        return isHarmlessNumber ? value : scrubbed;
    }

    CrashTextScrubber m_scrub;
};

}

std::expected<void, CrashReporterError> CrashReporterMac::start(const CrashReporterOptions& options)
{
    const auto texts = std::make_shared<const ReportTexts>(options.scrub);
    NSString* const endpoint = displayString(options.endpoint);
    NSString* const environment = displayString(options.environment);
    NSString* const release = displayString(options.release);
    [SentrySDK startWithConfigureOptions:^(SentryOptions* sentry) {
        sentry.dsn = endpoint;
        sentry.environment = environment;
        sentry.releaseName = release;
        sentry.beforeSend = ^SentryEvent* _Nullable(SentryEvent* event)
        {
            texts->scrubEvent(event);
            return event;
        };
        sentry.beforeBreadcrumb = ^SentryBreadcrumb* _Nullable(SentryBreadcrumb* breadcrumb)
        {
            texts->scrubBreadcrumb(breadcrumb);
            return breadcrumb;
        };
        sentry.sendDefaultPii = NO;
        // Neither requests nor clicks are looked at, and no class of the system is changed for it.
        sentry.enableSwizzling = NO;
        sentry.enableNetworkTracking = NO;
        sentry.enableNetworkBreadcrumbs = NO;
        sentry.enableCaptureFailedRequests = NO;
        // Sessions tell how long the application is used; nothing of that is a crash.
        sentry.enableAutoSessionTracking = NO;
    }];
    if (!SentrySDK.isEnabled)
        return std::unexpected(CrashReporterError { .message = "the crash reporter did not take its options" });
    return {};
}

void CrashReporterMac::capture(const CapturedError& error)
{
    SentryEvent* const event = [[SentryEvent alloc] initWithLevel:kSentryLevelError];
    event.logger = displayString(error.kind);
    event.message = [[SentryMessage alloc] initWithFormatted:displayString(error.message)];
    [SentrySDK captureEvent:event]; // By way of `beforeSend`.
}

}

NS_ASSUME_NONNULL_END
