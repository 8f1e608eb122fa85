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

// By value, since the blocks outlive the call. A launchctl that was ended by a signal has not answered.
void launch(NSTask* task, dispatch_queue_t queue, std::function<void(LaunchdAnswer)> finish)
{
    task.terminationHandler = ^(NSTask* ended) {
        if (ended.terminationReason != NSTaskTerminationReasonExit)
            finish(LaunchdAnswer::unknown);
        else
            finish(ended.terminationStatus == 0 ? LaunchdAnswer::loaded : LaunchdAnswer::notLoaded);
    };
    dispatch_async(queue, ^{
        if (![task launchAndReturnError:nil])
            finish(LaunchdAnswer::unknown);
    });
}

BackgroundItem currentBackgroundItem()
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

void ServiceManagerMac::checkLaunch(std::function<void(std::optional<LaunchCheck>)> onEnd)
{
    NSTask* const task = createLaunchctlTask();
    const dispatch_queue_t queue = m_launchdQueue;
    // On the queue that launches the task: a task is not to be used by two threads at once.
    const auto giveUp = [task, queue] {
        dispatch_async(queue, ^{
            if (task.running)
                [task terminate];
        });
    };
    launch(task, queue,
        expect<LaunchdAnswer>(
            m_launchdAnswers,
            [this, onEnd = std::move(onEnd)](LaunchdAnswer answer) { onEnd(launchCheck(answer, m_root)); }, giveUp));
}

void ServiceManagerMac::readBackgroundItem(std::function<void(BackgroundItem)> onEnd)
{
    const auto finish = expect<BackgroundItem>(m_backgroundItems, std::move(onEnd), [] { });
    dispatch_async(m_backgroundItemQueue, ^{ finish(currentBackgroundItem()); });
}

// The table drops whichever of the answer and the limit comes second.
template <typename Answer>
std::function<void(Answer)> ServiceManagerMac::expect(
    CompletionTable<Answer>& answers, std::function<void(Answer)> onEnd, std::function<void()> giveUp)
{
    const std::uint64_t number = m_nextQuestion++;
    auto finish = answers.expect([this, number, onEnd = std::move(onEnd)](Answer answer) {
        m_limits.erase(number);
        onEnd(answer);
    });
    m_limits.emplace(
        number, m_mainLoop.startTimer(secondsToAnswer, TimerRepeat::once, [finish, giveUp = std::move(giveUp)] {
            giveUp();
            finish(Answer::unknown);
        }));
    return finish;
}

}
