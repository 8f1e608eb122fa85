#include "support/StatusReply.h"

#include <gtest/gtest.h>
#include <map>

namespace brevanta {

namespace {

DaemonFailure failureOf(const Json& reply)
{
    const auto status = decodeStatus(reply.dump());
    return status ? DaemonFailure(DaemonError { DaemonError::Kind::rejected, "it decoded" }) : status.error();
}

DaemonFailure wrongType(const char* key) { return StatusDecodingError { StatusDecodingError::Kind::wrongType, key }; }

DaemonFailure missing(const char* key) { return StatusDecodingError { StatusDecodingError::Kind::missing, key }; }

std::vector<std::string> copy(BlockingStatus::List list) { return { list.begin(), list.end() }; }

const char* const lists[] = { "blocked_domains", "blocked_ips", "blocked_apps", "auto_track_domains", "auto_track_apps",
    "metered_ip_prefixes", "metered_domains" };
const char* const queues[]
    = { "pending_reminders", "pending_app_rejections", "pending_task_resumes", "pending_local_alerts" };
const char* const booleans[]
    = { "notify_macos_low_lp", "notify_macos_no_lp", "notify_macos_high_lp", "notify_macos_auto_track_start",
          "notify_macos_auto_track_stop", "notify_macos_app_blocked", "has_device_token", "auth_token_invalid" };
const char* const numbers[]
    = { "active_task_earn_rate", "low_lp_threshold", "high_lp_threshold", "account_deleted_at" };
const char* const texts[] = { "auth_token", "api_base_url", "block_reason", "active_task_title", "daemon_boot_id",
    "filter_health_result", "daemon_version", "lease_boot_session_uuid" };

}

TEST(BlockingStatus, TheLeastReplyLeavesEverythingElseEmptyOrAbsent)
{
    const auto decoded = decodeStatus(R"({"should_block": true, "energy": 3})");
    ASSERT_TRUE(decoded);
    const BlockingStatus& status = **decoded;
    EXPECT_TRUE(status.blocking);
    EXPECT_EQ(status.energy, 3);
    for (const auto list : { status.blockedDomains, status.blockedIPs, status.blockedApps, status.autoTrackDomains,
             status.autoTrackApps, status.meteredIPPrefixes, status.meteredDomains })
        EXPECT_TRUE(list.empty());
    EXPECT_TRUE(status.pendingReminders.empty() && status.pendingAppRejections.empty()
        && status.pendingTaskResumes.empty() && status.pendingLocalAlerts.empty());
    EXPECT_EQ(status.display, DisplayState {});
    EXPECT_FALSE(status.authToken || status.apiBaseUrl || status.daemonBootId || status.filterHealthResult
        || status.daemonVersion || status.leaseBootSessionUUID || status.leaseUntilUptimeNs || status.autoTrackSessions
        || status.removal.snapshot);
    EXPECT_FALSE(status.notifyMacosLowLp.has_value() || status.notifyMacosNoLp.has_value()
        || status.notifyMacosHighLp.has_value() || status.hasDeviceToken.has_value()
        || status.authTokenInvalid.has_value());
}

TEST(BlockingStatus, EachKeyReachesItsOwnField)
{
    const Json additions { { "should_block", false }, { "energy", -1.25 }, { "blocked_domains", { "a", "b" } },
        { "blocked_ips", { "c" } }, { "blocked_apps", { "d" } }, { "auto_track_domains", { "e" } },
        { "auto_track_apps", { "f" } }, { "metered_ip_prefixes", { "g" } }, { "metered_domains", { "h\u00e9" } },
        { "auth_token", "token" }, { "api_base_url", "https://api" }, { "block_reason", "reason" },
        { "active_task_title", "task" }, { "active_task_earn_rate", 1.5 }, { "notify_macos_low_lp", true },
        { "notify_macos_no_lp", false }, { "notify_macos_high_lp", true }, { "notify_macos_auto_track_start", false },
        { "notify_macos_auto_track_stop", true }, { "notify_macos_app_blocked", false }, { "low_lp_threshold", 10 },
        { "high_lp_threshold", 50.5 }, { "has_device_token", true }, { "account_deleted_at", 17 },
        { "daemon_boot_id", "boot" }, { "filter_health_result", "accepted" }, { "auth_token_invalid", false },
        { "auto_track_sessions",
            Json::array({ { { "bundle_id", "x" }, { "session_id", "y" } },
                { { "bundle_id", "z" }, { "session_id", "w" }, { "budget_end_epoch", 9 } } }) },
        { "daemon_version", "1.2.3" }, { "lease_boot_session_uuid", "uuid" }, { "lease_until_uptime_ns", UINT64_MAX } };
    const auto status = statusWith(additions);
    EXPECT_FALSE(status->blocking);
    EXPECT_EQ(status->energy, -1.25);
    EXPECT_EQ(copy(status->blockedDomains), (std::vector<std::string> { "a", "b" }));
    EXPECT_EQ(copy(status->blockedIPs), std::vector<std::string> { "c" });
    EXPECT_EQ(copy(status->blockedApps), std::vector<std::string> { "d" });
    EXPECT_EQ(copy(status->autoTrackDomains), std::vector<std::string> { "e" });
    EXPECT_EQ(copy(status->autoTrackApps), std::vector<std::string> { "f" });
    EXPECT_EQ(copy(status->meteredIPPrefixes), std::vector<std::string> { "g" });
    EXPECT_EQ(copy(status->meteredDomains), std::vector<std::string> { "h\u00e9" });
    EXPECT_EQ(status->authToken, "token");
    EXPECT_EQ(status->apiBaseUrl, "https://api");
    EXPECT_EQ(status->display, (DisplayState { "reason", "task", 1.5 }));
    EXPECT_EQ(status->notifyMacosLowLp, true);
    EXPECT_EQ(status->notifyMacosNoLp, false);
    EXPECT_EQ(status->notifyMacosHighLp, true);
    EXPECT_EQ(status->notifyMacosAutoTrackStart, false);
    EXPECT_EQ(status->notifyMacosAutoTrackStop, true);
    EXPECT_EQ(status->notifyMacosAppBlocked, false);
    EXPECT_EQ(status->lowLpThreshold, 10);
    EXPECT_EQ(status->highLpThreshold, 50.5);
    EXPECT_EQ(status->hasDeviceToken, true);
    EXPECT_EQ(status->accountDeletedAt, 17);
    EXPECT_EQ(status->daemonBootId, "boot");
    EXPECT_EQ(status->filterHealthResult, "accepted");
    EXPECT_EQ(status->authTokenInvalid, false);
    EXPECT_EQ(
        status->autoTrackSessions, (std::vector<AutoTrackSessionInfo> { { "x", "y", std::nullopt }, { "z", "w", 9 } }));
    EXPECT_EQ(status->daemonVersion, "1.2.3");
    EXPECT_EQ(status->leaseBootSessionUUID, "uuid");
    EXPECT_EQ(status->leaseUntilUptimeNs, UINT64_MAX);
}

TEST(BlockingStatus, ARequiredKeyMustBeThereAndOfItsType)
{
    EXPECT_EQ(failureOf({ { "should_block", true } }), missing("energy"));
    EXPECT_EQ(failureOf({ { "energy", 1 } }), missing("should_block"));
    EXPECT_EQ(failureOf({ { "blocking", true }, { "energy", 1 } }), missing("should_block"));
    EXPECT_EQ(failureOf(statusReply({ { "should_block", nullptr } })), missing("should_block"));
    EXPECT_EQ(failureOf(statusReply({ { "should_block", 1 } })), wrongType("should_block"));
    EXPECT_EQ(failureOf(statusReply({ { "should_block", "true" } })), wrongType("should_block"));
    EXPECT_EQ(failureOf(statusReply({ { "energy", true } })), wrongType("energy"));
    EXPECT_EQ(failureOf(statusReply({ { "energy", "3" } })), wrongType("energy"));
}

TEST(BlockingStatus, AWrongTypeInAnOptionalKeyFailsTheReplyAndNullDoesNot)
{
    std::map<std::string, Json> wrong;
    for (const char* key : lists)
        wrong[key] = "text";
    for (const char* key : queues)
        wrong[key] = Json::object();
    for (const char* key : booleans)
        wrong[key] = 1;
    for (const char* key : numbers)
        wrong[key] = true;
    for (const char* key : texts)
        wrong[key] = 5;
    wrong["auto_track_sessions"] = Json::object();
    wrong["lease_until_uptime_ns"] = -1;
    EXPECT_EQ(wrong.size(), 7u + 4u + 8u + 4u + 8u + 2u);
    for (const auto& [key, value] : wrong) {
        EXPECT_EQ(failureOf(statusReply({ { key, value } })), wrongType(key.c_str()));
        EXPECT_TRUE(decodeStatus(statusReply({ { key, nullptr } }).dump())) << key;
    }
    EXPECT_EQ(failureOf(statusReply({ { "lease_until_uptime_ns", 1.5 } })), wrongType("lease_until_uptime_ns"));
    EXPECT_EQ(failureOf(statusReply({ { "blocked_ips", { "a", 1 } } })), wrongType("blocked_ips"));
    EXPECT_EQ(failureOf(statusReply({ { "blocked_ips", { "a", nullptr } } })), wrongType("blocked_ips"));
}

TEST(BlockingStatus, TheFirstFaultInTheRecordsOrderIsReported)
{
    EXPECT_EQ(failureOf({ { "lease_until_uptime_ns", "x" }, { "blocked_apps", 1 }, { "should_block", true } }),
        missing("energy"));
    EXPECT_EQ(failureOf(statusReply({ { "daemon_version", 2 }, { "auth_token_invalid", 1 } })),
        wrongType("auth_token_invalid"));
}

TEST(BlockingStatus, QueuesAreLenientAndSessionsAreNot)
{
    const Json reminder { { "event_id", 1 }, { "task_id", "t" }, { "kind", "fire" }, { "title", "T" },
        { "notification_title", "N" }, { "body", "B" } };
    const auto status = statusWith({ { "pending_reminders", Json::array({ reminder, 5, reminder }) } });
    EXPECT_EQ(status->pendingReminders.size(), 2u);

    for (const Json& session : { Json({ { "bundle_id", "x" } }), Json({ { "bundle_id", 1 }, { "session_id", "y" } }),
             Json({ { "bundle_id", "x" }, { "session_id", "y" }, { "budget_end_epoch", "soon" } }), Json("x") })
        EXPECT_EQ(failureOf(statusReply({ { "auto_track_sessions",
                      Json::array({ { { "bundle_id", "a" }, { "session_id", "b" } }, session }) } })),
            wrongType("auto_track_sessions"))
            << session;
}

TEST(BlockingStatus, ABadRemovalRecordNeverFailsTheReply)
{
    for (const Json& removal : { Json("text"), Json::object(), Json(1), Json::array() })
        EXPECT_FALSE(statusWith({ { "removal", removal } })->removal.snapshot) << removal;
}

TEST(BlockingStatus, WhatIsNoObjectIsAnInvalidResponseAndWhatIsNoJsonAParseError)
{
    for (const char* reply : { "[]", "[{}]\n", "\"text\"", "5", "true", "null" })
        EXPECT_EQ(decodeStatus(reply).error(), DaemonFailure(DaemonError { DaemonError::Kind::invalidResponse, {} }));
    const std::string whole = statusReply().dump();
    for (const std::string& reply : { std::string(), std::string("\n"), whole.substr(0, whole.size() / 2),
             whole + whole, whole + "x", std::string("garbage\n"), std::string("\0\0", 2) })
        EXPECT_TRUE(std::holds_alternative<JsonParseError>(decodeStatus(reply).error())) << reply;
    EXPECT_TRUE(decodeStatus(whole + " \n"));
}

TEST(BlockingStatus, AStatusOutlivesItsDecoderAndLaterReplies)
{
    std::shared_ptr<const BlockingStatus> first;
    {
        BlockingStatusDecoder decoder;
        PaddedBuffer reply;
        for (int round = 0; round < 20; ++round) {
            Json domains = Json::array();
            for (int index = 0; index <= round; ++index)
                domains.push_back("domain-" + std::to_string(round) + "-" + std::to_string(index));
            reply.assign(statusReply({ { "blocked_domains", domains } }).dump());
            const auto status = decoder.decode(reply).value();
            ASSERT_EQ(status->blockedDomains.size(), static_cast<std::size_t>(round) + 1);
            if (round == 1)
                first = status;
        }
    }
    EXPECT_EQ(copy(first->blockedDomains), (std::vector<std::string> { "domain-1-0", "domain-1-1" }));
}

}
