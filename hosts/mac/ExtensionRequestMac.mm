#include "mac/ExtensionRequestMac.h"

#include "mac/TextMac.h"

#include <utility>

using brevanta::ExtensionRecord;
using brevanta::ExtensionReplacement;
using brevanta::ExtensionRequestEvents;
using brevanta::ExtensionRequestResult;

namespace {

ExtensionRecord recordFrom(OSSystemExtensionProperties* properties)
{
    return {
        .isEnabled = static_cast<bool>(properties.isEnabled),
        .isAwaitingUserApproval = static_cast<bool>(properties.isAwaitingUserApproval),
        .isUninstalling = static_cast<bool>(properties.isUninstalling),
        .shortVersion = brevanta::utf8FromString(properties.bundleShortVersion),
        .buildVersion = brevanta::utf8FromString(properties.bundleVersion),
    };
}

}

namespace brevanta {

FilterError filterErrorFrom(NSError* error)
{
    return {
        .domain = utf8FromString(error.domain),
        .code = static_cast<int>(error.code),
        .message = utf8FromString(error.localizedDescription),
    };
}

}

@implementation BrevantaExtensionRequestDelegate {
    std::optional<ExtensionRequestEvents> _events;
}

- (instancetype)initWithEvents:(const ExtensionRequestEvents&)events
{
    if ((self = [super init]))
        _events = events;
    return self;
}

- (void)detach
{
    _events.reset();
}

- (OSSystemExtensionReplacementAction)request:(OSSystemExtensionRequest*)request
                  actionForReplacingExtension:(OSSystemExtensionProperties*)existing
                                withExtension:(OSSystemExtensionProperties*)replacement
{
    if (!_events)
        return OSSystemExtensionReplacementActionCancel;
    const auto ask = _events->replacing; // The answering may detach this delegate.
    return ask(recordFrom(existing), recordFrom(replacement)) == ExtensionReplacement::replace
        ? OSSystemExtensionReplacementActionReplace
        : OSSystemExtensionReplacementActionCancel;
}

- (void)requestNeedsUserApproval:(OSSystemExtensionRequest*)request
{
    if (_events)
        _events->needsUserApproval();
}

- (void)request:(OSSystemExtensionRequest*)request foundProperties:(NSArray<OSSystemExtensionProperties*>*)properties
{
    if (!_events)
        return;
    std::vector<ExtensionRecord> records;
    for (OSSystemExtensionProperties* copy in properties)
        records.push_back(recordFrom(copy));
    _events->foundProperties(std::move(records));
}

- (void)request:(OSSystemExtensionRequest*)request didFinishWithResult:(OSSystemExtensionRequestResult)result
{
    if (_events)
        _events->ended(result == OSSystemExtensionRequestWillCompleteAfterReboot
                ? ExtensionRequestResult::willCompleteAfterReboot
                : ExtensionRequestResult::completed);
}

- (void)request:(OSSystemExtensionRequest*)request didFailWithError:(NSError*)error
{
    if (_events)
        _events->ended(std::unexpected(brevanta::filterErrorFrom(error)));
}

@end
