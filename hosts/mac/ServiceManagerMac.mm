#include "mac/ServiceManagerMac.h"

#import <ServiceManagement/ServiceManagement.h>

#include <utility>

namespace brevanta {

namespace {

constexpr double secondsToAnswer = 4;

// Exits with 0 when launchd knows the service.
NSTask* createLaunchctlTask()
{
    NSString* const arguments[] = { @"print", @"system/com.brevanta.daemon" };
    NSTask* const task = [[NSTask alloc] init];
    task.executableURL = [NSURL fileURLWithPath:@"/bin/launchctl" isDirectory:NO];
    task.arguments = [NSArray arrayWithObjects:arguments count:std::size(arguments)];
    task.standardInput = NSFileHandle.fileHandleWithNullDevice;
    task.standardOutput = NSFileHandle.fileHandleWithNullDevice;
    task.standardError = NSFileHandle.fileHandleWithNullDevice;
    return task;
}

// By value, since the blocks outlive the call.
void launch(NSTask* task, dispatch_queue_t queue, std::function<void(LaunchdAnswer)> finish)
{
    task.terminationHandler = ^(NSTask* ended) {
        const bool succeeded = ended.terminationReason == NSTaskTerminationReasonExit && ended.terminationStatus == 0;
        finish(succeeded ? LaunchdAnswer::loaded : LaunchdAnswer::notLoaded);
    };
    dispatch_async(queue, ^{
        if (![task launchAndReturnError:nil])
            finish(LaunchdAnswer::notLoaded);
    });
}

BackgroundItem readBackgroundItem()
{
    NSURL* const url = [NSURL fileURLWithPath:@"/Library/LaunchDaemons/com.brevanta.daemon.plist" isDirectory:NO];
    const SMAppServiceStatus status = [SMAppService statusForLegacyURL:url];
    if (status == SMAppServiceStatusRequiresApproval)
        return BackgroundItem::requiresApproval;
    return status == SMAppServiceStatusEnabled ? BackgroundItem::allowed : BackgroundItem::unknown;
}

}

ServiceManagerMac::ServiceManagerMac(MainLoop& mainLoop, std::filesystem::path root)
    : m_mainLoop(mainLoop)
    , m_root(std::move(root))
    , m_launchdQueue(dispatch_queue_create("com.brevanta.mac.launchctl", DISPATCH_QUEUE_SERIAL))
    , m_backgroundItemQueue(dispatch_queue_create("com.brevanta.mac.background-item", DISPATCH_QUEUE_SERIAL))
    , m_launchdAnswers(mainLoop)
    , m_backgroundItems(mainLoop)
{
}

bool ServiceManagerMac::isProgramInstalled() const { return isServiceProgramInstalled(m_root); }

void ServiceManagerMac::observe(std::function<void(ServiceObservation)> onEnd)
{
    const std::uint64_t number = m_nextObservation++;
    NSTask* const task = createLaunchctlTask();
    auto limit
        = m_mainLoop.startTimer(secondsToAnswer, TimerRepeat::once, [this, number, task] { giveUp(number, task); });
    m_observations.emplace(number,
        Observation { .launchd = std::nullopt,
            .backgroundItem = std::nullopt,
            .limit = std::move(limit),
            .onEnd = std::move(onEnd) });
    launch(task, m_launchdQueue, m_launchdAnswers.expect([this, number](LaunchdAnswer answer) {
        if (const auto found = m_observations.find(number); found != m_observations.end())
            found->second.launchd = answer;
        endIfComplete(number);
    }));
    const auto finish = m_backgroundItems.expect([this, number](BackgroundItem item) {
        if (const auto found = m_observations.find(number); found != m_observations.end())
            found->second.backgroundItem = item;
        endIfComplete(number);
    });
    dispatch_async(m_backgroundItemQueue, ^{ finish(readBackgroundItem()); });
}

void ServiceManagerMac::endIfComplete(std::uint64_t number)
{
    const auto found = m_observations.find(number);
    if (found != m_observations.end() && found->second.launchd && found->second.backgroundItem)
        end(number);
}

// On the queue that launches the task: a task is not to be used by two threads at once.
void ServiceManagerMac::giveUp(std::uint64_t number, NSTask* task)
{
    dispatch_async(m_launchdQueue, ^{
        if (task.running)
            [task terminate];
    });
    end(number);
}

void ServiceManagerMac::end(std::uint64_t number)
{
    const auto ended = m_observations.extract(number);
    if (ended.empty())
        return;
    const Observation& observation = ended.mapped();
    observation.onEnd({ .launch = launchCheck(observation.launchd.value_or(LaunchdAnswer::notLoaded), m_root),
        .backgroundItem = observation.backgroundItem.value_or(BackgroundItem::unknown) });
}

}
