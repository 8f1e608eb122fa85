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
// are asked off the main thread and given four seconds together.
class ServiceManagerMac final : public ServiceManager {
public:
    // `root` stands for "/" in the path of the program file; launchd is always this system's.
    ServiceManagerMac(MainLoop& mainLoop, std::filesystem::path root);

    void observe(std::function<void(ServiceObservation)> onEnd) override;
    [[nodiscard]] bool isProgramInstalled() const override;

private:
    struct Observation {
        std::optional<LaunchdAnswer> launchd;
        std::optional<BackgroundItem> backgroundItem;
        std::unique_ptr<Timer> limit;
        std::function<void(ServiceObservation)> onEnd;
    };

    void endIfComplete(std::uint64_t number);
    void end(std::uint64_t number);
    void giveUp(std::uint64_t number, NSTask* task);

    MainLoop& m_mainLoop;
    std::filesystem::path m_root;
    // Serial, so that a system that does not answer holds up one thread each and no more.
    dispatch_queue_t m_launchdQueue;
    dispatch_queue_t m_backgroundItemQueue;
    CompletionTable<LaunchdAnswer> m_launchdAnswers;
    CompletionTable<BackgroundItem> m_backgroundItems;
    std::map<std::uint64_t, Observation> m_observations;
    std::uint64_t m_nextObservation { 0 };
};

}

NS_ASSUME_NONNULL_END
