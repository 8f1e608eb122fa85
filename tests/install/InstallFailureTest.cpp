#include "install/InstallFailure.h"

#include "base/FailureDetails.h"
#include "platform/Administrator.h"

#include <gtest/gtest.h>

namespace brevanta {

TEST(InstallFailureTest, WhatIsKnownIsSaidInWordsAndTheRestBehindOneLineOfDetails)
{
    const std::string busy = "macOS is not done with the previous blocking service yet. Try again in a minute, and "
                             "restart this Mac if that does not help.";
    const std::string notAllowed = "macOS does not allow the blocking service to be changed. Allow Brevanta to run in "
                                   "the background in System Settings, under General, Login Items; if "
                                   "that is not possible, ask whoever manages this Mac.";
    const std::string denied
        = "The files of the blocking service may not be changed. Ask whoever manages this Mac, and try again.";
    const std::string unknown = "macOS reported a problem that Brevanta does not know. Try again, and restart this Mac "
                                "if that does not help.";
    const std::string stays = "The blocking service did not stop in time. Try again in a minute.";
    struct Case {
        std::string written;
        int number;
        std::string message;
    };
    for (const auto& [written, number, message] : std::initializer_list<Case> {
             { "Bootstrap failed: 5: Input/output error\rBootstrap failed: 5: Input/output error", 5, busy },
             { "rm: a: Operation not permitted\rBootstrap failed: 37: Operation already in progress", 37, busy },
             { "Bootstrap failed: 36: Ein anderer Vorgang", 36, busy },
             { "cp: a: OPERATION NOT PERMITTED", 1, notAllowed },
             { "", 119, notAllowed },
             { "", 73, denied },
             { "/bin/sh: /a.lock: Permission denied\r", 1, denied },
             { "cp: a: No space left on device", 1,
                 "There is no room left on this Mac's disk. Free some space, and try again." },
             { "Le nom ou le mot de passe", -60005,
                 "The administrator's name or password was not right. Try again with those of an administrator of this "
                 "Mac." },
             { "Boot-out failed: 3\r" + stays, 80, stays },
             { "cp: a: Input/output error", 1, unknown + "\n\nDetails: cp: a: Input/output error; status 1" },
             { " odd\todd \n\r\nmore\r odd odd", -1743, unknown + "\n\nDetails: odd odd (2 times); more; error -1743" },
             { " \r\n", 0, unknown },
             { std::string(199, 'x') + "é", 1, unknown + "\n\nDetails: " + std::string(199, 'x') + "…" },
         }) {
        const AdministratorError error { .message = written, .number = number };
        EXPECT_EQ(installFailure(error, FlightTask::removal).message, message);
        EXPECT_EQ(installFailure(error, FlightTask::install).message, "Daemon installation failed: " + message);
    }
}

TEST(InstallFailureTest, TheReportIsOneLineWithAllThatWasWritten)
{
    const auto report
        = [](const AdministratorError& error) { return installFailure(error, FlightTask::install).report; };
    const std::string more(maxDetailsBytes, 'm');
    EXPECT_EQ(report({ .message = "a: Read-only file system\ra: Read-only file system\r" + more, .number = 2 }),
        "Daemon installation failed: This Mac's disk cannot be written to. Restart this Mac, and try again. (a: "
        "Read-only "
        "file system (2 times); "
            + more + "; status 2)");
    EXPECT_EQ(report({ .kind = AdministratorError::Kind::notCompiled, .message = "Expected end of line." }),
        "The install script could not be compiled. Install Brevanta anew, and try again. (Expected end of line.)");
    const std::string words = "Brevanta is still removing its blocking service from this Mac. Try again in a minute.";
    EXPECT_EQ(report({ .message = words, .number = 75 }), "Daemon installation failed: " + words);
}

}
