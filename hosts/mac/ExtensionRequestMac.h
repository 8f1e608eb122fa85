#pragma once

#include "platform/FilterSystem.h"

#import <SystemExtensions/SystemExtensions.h>

NS_ASSUME_NONNULL_BEGIN

namespace brevanta {

// What the system tells of one request, on the main thread. None is empty.
struct ExtensionRequestEvents {
    std::function<ExtensionReplacement(const ExtensionRecord& existing, const ExtensionRecord& bundled)> replacing;
    std::function<void()> needsUserApproval;
    std::function<void(std::vector<ExtensionRecord>)> foundProperties;
    std::function<void(std::expected<ExtensionRequestResult, FilterError>)> ended;
};

FilterError filterErrorFrom(NSError* error);

}

// Documentation page OSSystemExtensionRequestDelegate. A request does not keep its delegate alive.
@interface BrevantaExtensionRequestDelegate : NSObject <OSSystemExtensionRequestDelegate>

- (instancetype)initWithEvents:(const brevanta::ExtensionRequestEvents&)events NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_UNAVAILABLE;

// From now on nothing is told, and no copy is replaced.
- (void)detach;

@end

NS_ASSUME_NONNULL_END
