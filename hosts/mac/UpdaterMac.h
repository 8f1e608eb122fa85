#pragma once

#include "platform/Updater.h"

#import <Foundation/Foundation.h>

@class BrevantaUpdaterDelegate;
@class SPUStandardUpdaterController;

namespace brevanta {

// Sparkle 2 with its standard windows (documentation page SPUStandardUpdaterController). It reads feed and key from the
// information dictionary itself, and keeps the setting of automatic checks in the user defaults.
class UpdaterMac final : public Updater {
public:
    void start(RelaunchHandler handler) override;
    [[nodiscard]] bool automaticChecks() const override;
    void setAutomaticChecks(bool on) override;
    void checkNow() override;

private:
    BrevantaUpdaterDelegate* _Nullable m_delegate { nil }; // Which the controller does not keep alive.
    SPUStandardUpdaterController* _Nullable m_controller { nil }; // From `start` on.
};

}
