#include "filter/ComponentLabels.h"

#include <gtest/gtest.h>

namespace brevanta {

TEST(ComponentLabels, TheFiltersLineIsThatOfTheFirstConditionThatHolds)
{
    using Status = FilterStatus;
    const ComponentLine approve { "⚠ Approve Content Filter in System Settings…", ComponentAction::openFilterApproval };
    const ComponentLine on { "✓ Content Filter", ComponentAction::none };
    const ComponentLine install { "⚠ Install Content Filter…", ComponentAction::activateFilter };
    struct Case {
        Status status;
        ComponentLine itself; // While there is nothing to install and nothing to approve.
        ComponentLine needingInstall;
    };
    for (const auto& [status, itself, needingInstall] : std::initializer_list<Case> {
             { Status::on, on, on },
             { Status::checking, { "Content Filter: Checking…", ComponentAction::none }, install },
             { Status::cantCheck, { "Content Filter: Can't check", ComponentAction::none }, install },
             { Status::awaitingApproval, { "Content Filter: Waiting for approval", ComponentAction::none }, install },
             { Status::off, { "⚠ Content Filter: Off", ComponentAction::none }, install },
         }) {
        EXPECT_EQ(filterLine({ .status = status }), itself);
        EXPECT_EQ(filterLine({ .status = status, .needsInstall = true }), needingInstall) << itself.title;
        EXPECT_EQ(filterLine({ .status = status, .approvalRequested = true }), approve) << itself.title;
        EXPECT_EQ(filterLine({ status, true, true }), approve) << itself.title;
    }
}

TEST(ComponentLabels, TheServicesLineOffersTheRemedyOfItsState)
{
    using Health = DaemonHealth;
    namespace Policy = DaemonUpgradePolicy;
    struct Case {
        Health::State state;
        ComponentLine expected;
    };
    const auto running = [](Policy::Decision decision) { return Health::Running { {}, std::move(decision) }; };
    for (const auto& [state, expected] : std::initializer_list<Case> {
             { running(Policy::Current { "1.3" }), { "✓ Blocking Service 1.3", ComponentAction::none } },
             { running(Policy::NewerInstalled { "1.4", "1.3" }), { "✓ Blocking Service 1.4", ComponentAction::none } },
             { running(Policy::Unknown { "1.3-beta", "1.3" }), { "✓ Blocking Service", ComponentAction::none } },
             { running(Policy::Upgrade { "1.2", "1.3" }),
                 { "⚠ Update Blocking Service to 1.3…", ComponentAction::updateService } },
             { Health::Checking {}, { "Blocking Service: Checking…", ComponentAction::none } },
             { Health::NotInstalled {}, { "⚠ Install Blocking Service…", ComponentAction::installService } },
             { Health::NotRunning {}, { "⚠ Restart Blocking Service…", ComponentAction::restartService } },
             { Health::Unreachable {}, { "⚠ Restart Blocking Service…", ComponentAction::restartService } },
             { Health::TurnedOffInSettings {},
                 { "⚠ Blocking Service Turned Off in System Settings…", ComponentAction::openLoginItemsSettings } },
             { Health::Starting {}, { "Blocking Service: starting…", ComponentAction::none } },
         })
        EXPECT_EQ(serviceLine(state, InstallProgress::idle), expected) << expected.title;
    EXPECT_EQ(serviceLine(Health::Starting {}, InstallProgress::inFlight),
        (ComponentLine { "Blocking Service: installing…", ComponentAction::none }));
    EXPECT_EQ(serviceLine(Health::Starting {}, InstallProgress::removing).title, "Blocking Service: removing…");
}

}
