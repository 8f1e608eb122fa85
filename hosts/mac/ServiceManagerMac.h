#pragma once

#include "mac/CompletionTable.h"
#include "platform/ServiceManager.h"
#include "posix/ServiceProgram.h"

#import <Foundation/Foundation.h>
#import <dispatch/dispatch.h>

#include <filesystem>
#include <optional>

NS_ASSUME_NONNULL_BEGIN

namespace brevanta {

// What launchctl(1) and the Login Items settings (documentation page SMAppService) say of the blocking service. Both
// are asked off the main thread and given four seconds each.
class ServiceManagerMac final : public ServiceManager {
public:
    // `root` stands for "/" in the path of the program file; launchd is always this system's.
    ServiceManagerMac(MainLoop& mainLoop, std::filesystem::path root);

    void checkLaunch(std::function<void(std::optional<LaunchCheck>)> onEnd) override;
    void readBackgroundItem(std::function<void(BackgroundItem)> onEnd) override;
    [[nodiscard]] bool isProgramInstalled() const override;

private:
    template <typename Answer>
    std::function<void(Answer)> expect(
        CompletionTable<Answer>& answers, std::function<void(Answer)> onEnd, std::function<void()> giveUp);

    MainLoop& m_mainLoop;
    std::filesystem::path m_root;
    // Serial, so that a system that does not answer holds up one thread each and no more.
    dispatch_queue_t m_launchdQueue;
    dispatch_queue_t m_backgroundItemQueue;
    CompletionTable<LaunchdAnswer> m_launchdAnswers;
    CompletionTable<BackgroundItem> m_backgroundItems;
    std::map<std::uint64_t, std::unique_ptr<Timer>> m_limits; // Of the questions that have not been answered.
    std::uint64_t m_nextQuestion { 0 };
};

}

NS_ASSUME_NONNULL_END
