#include "mac/UpdaterMac.h"

#import <Sparkle/Sparkle.h>

using brevanta::RelaunchDecision;
using brevanta::Updater;

NS_ASSUME_NONNULL_BEGIN

// Documentation page SPUUpdaterDelegate.
@interface BrevantaUpdaterDelegate : NSObject <SPUUpdaterDelegate>

- (instancetype)initWithHandler:(const Updater::RelaunchHandler&)handler NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_UNAVAILABLE;

@end

NS_ASSUME_NONNULL_END

@implementation BrevantaUpdaterDelegate {
    Updater::RelaunchHandler _handler;
}

- (instancetype)initWithHandler:(const Updater::RelaunchHandler&)handler
{
    if ((self = [super init]))
        _handler = handler;
    return self;
}

- (BOOL)updater:(SPUUpdater*)updater
    shouldPostponeRelaunchForUpdate:(SUAppcastItem*)item
                 untilInvokingBlock:(void (^)(void))installHandler
{
    return _handler([relaunch = installHandler] { relaunch(); }) == RelaunchDecision::later;
}

@end

namespace brevanta {

void UpdaterMac::start(RelaunchHandler handler)
{
    m_delegate = [[BrevantaUpdaterDelegate alloc] initWithHandler:handler];
    m_controller = [[SPUStandardUpdaterController alloc] initWithStartingUpdater:YES
                                                                 updaterDelegate:m_delegate
                                                              userDriverDelegate:nil];
}

bool UpdaterMac::automaticChecks() const
{
    return static_cast<bool>(m_controller.updater.automaticallyChecksForUpdates);
}

void UpdaterMac::setAutomaticChecks(bool on) { m_controller.updater.automaticallyChecksForUpdates = on; }

void UpdaterMac::checkNow() { [m_controller checkForUpdates:nil]; }

}
