#include "daemon/BlockingStatusDecoder.h"

#include <array>
#include <mutex>

namespace brevanta {

namespace {

constexpr std::size_t listCount = 7;

// One is in use and one spare; more are only alive together while somebody holds on to an old status.
constexpr std::size_t keptDocuments = 1;

}

struct BlockingStatusDecoder::Document {
    json::Parser parser; // Owns the text of all strings.
    std::array<std::vector<std::string_view>, listCount> lists;
};

// Documents that no status uses. A status hands its document back from whichever thread drops it last.
class BlockingStatusDecoder::DocumentPool : public std::enable_shared_from_this<DocumentPool> {
public:
    std::shared_ptr<Document> take()
    {
        std::unique_ptr<Document> document;
        {
            const std::lock_guard lock(m_mutex);
            if (!m_free.empty()) {
                document = std::move(m_free.back());
                m_free.pop_back();
            }
        }
        if (!document)
            document = std::make_unique<Document>();
        return { document.release(), [pool = shared_from_this()](Document* used) { pool->giveBack(used); } };
    }

private:
    void giveBack(Document* used)
    {
        std::unique_ptr<Document> document(used);
        const std::lock_guard lock(m_mutex);
        if (m_free.size() < keptDocuments)
            m_free.push_back(std::move(document));
    }

    std::mutex m_mutex;
    std::vector<std::unique_ptr<Document>> m_free;
};

namespace {

// Reads the members of the reply one after another and remembers the first that spoils it.
class StatusReader {
public:
    StatusReader(json::Object reply, std::array<std::vector<std::string_view>, listCount>& lists)
        : m_reply(reply)
        , m_lists(lists)
    {
    }

    const std::optional<StatusDecodingError>& error() const { return m_error; }

    template <typename Value>
    std::optional<Value> optional(std::string_view key, std::optional<Value> (*convert)(json::Element))
    {
        const auto element = json::member(m_reply, key);
        if (!element)
            return std::nullopt;
        auto value = convert(*element);
        if (!value)
            fail(StatusDecodingError::Kind::wrongType, key);
        return value;
    }

    template <typename Value> Value required(std::string_view key, std::optional<Value> (*convert)(json::Element))
    {
        if (!json::member(m_reply, key))
            fail(StatusDecodingError::Kind::missing, key);
        return optional(key, convert).value_or(Value {});
    }

    std::optional<std::string> text(std::string_view key)
    {
        const auto view = optional(key, json::asText);
        return view ? std::optional<std::string>(*view) : std::nullopt;
    }

    // Must be called for at most `listCount` keys.
    BlockingStatus::List list(std::string_view key)
    {
        auto& entries = m_lists[m_nextList++];
        entries.clear();
        const auto array = optional(key, json::asArray);
        if (!array)
            return {};
        // The one loop that grows with the reply: it asks the parser directly, so that all of it is inlined.
        if (entries.capacity() < array->size())
            entries.reserve(array->size() + array->size() / 8);
        for (const auto element : *array) {
            std::string_view entry;
            if (element.get(entry) != simdjson::SUCCESS) {
                fail(StatusDecodingError::Kind::wrongType, key);
                return {};
            }
            entries.push_back(entry);
        }
        return entries;
    }

    template <typename Record> std::vector<Record> queue(std::string_view key)
    {
        const auto array = optional(key, json::asArray);
        return array ? decodeLossyArray<Record>(*array) : std::vector<Record> {};
    }

    std::optional<std::vector<AutoTrackSessionInfo>> autoTrackSessions(std::string_view key)
    {
        const auto array = optional(key, json::asArray);
        if (!array)
            return std::nullopt;
        std::vector<AutoTrackSessionInfo> sessions;
        for (const auto element : *array) {
            auto session = autoTrackSession(element);
            if (!session) {
                fail(StatusDecodingError::Kind::wrongType, key);
                return std::nullopt;
            }
            sessions.push_back(std::move(*session));
        }
        return sessions;
    }

    RemovalStatusField removal() const { return RemovalStatusField::decode(m_reply); }

private:
    static std::optional<AutoTrackSessionInfo> autoTrackSession(json::Element element)
    {
        const auto object = json::asObject(element);
        if (!object)
            return std::nullopt;
        const auto bundleId = json::member(*object, "bundle_id").and_then(json::asText);
        const auto sessionId = json::member(*object, "session_id").and_then(json::asText);
        const auto budgetEnd = json::member(*object, "budget_end_epoch");
        const auto budgetEndEpoch = budgetEnd.and_then(json::asDouble);
        if (!bundleId || !sessionId || (budgetEnd && !budgetEndEpoch))
            return std::nullopt;
        return AutoTrackSessionInfo { std::string(*bundleId), std::string(*sessionId), budgetEndEpoch };
    }

    void fail(StatusDecodingError::Kind kind, std::string_view key)
    {
        if (!m_error)
            m_error = StatusDecodingError { kind, std::string(key) };
    }

    json::Object m_reply;
    std::array<std::vector<std::string_view>, listCount>& m_lists;
    std::size_t m_nextList { 0 };
    std::optional<StatusDecodingError> m_error;
};

// The members are read in the order of the record, which decides what error a reply with several faults gives.
BlockingStatus readStatus(StatusReader& reader)
{
    BlockingStatus status;
    status.blocking = reader.required("should_block", json::asBool);
    status.energy = reader.required("energy", json::asDouble);
    status.blockedDomains = reader.list("blocked_domains");
    status.blockedIPs = reader.list("blocked_ips");
    status.blockedApps = reader.list("blocked_apps");
    status.autoTrackDomains = reader.list("auto_track_domains");
    status.autoTrackApps = reader.list("auto_track_apps");
    status.meteredIPPrefixes = reader.list("metered_ip_prefixes");
    status.meteredDomains = reader.list("metered_domains");
    status.authToken = reader.text("auth_token");
    status.apiBaseUrl = reader.text("api_base_url");
    status.display.blockReason = reader.text("block_reason");
    status.display.activeTaskTitle = reader.text("active_task_title");
    status.display.activeTaskEarnRate = reader.optional("active_task_earn_rate", json::asDouble);
    status.notifyMacosLowLp = reader.optional("notify_macos_low_lp", json::asBool);
    status.notifyMacosNoLp = reader.optional("notify_macos_no_lp", json::asBool);
    status.notifyMacosHighLp = reader.optional("notify_macos_high_lp", json::asBool);
    status.notifyMacosAutoTrackStart = reader.optional("notify_macos_auto_track_start", json::asBool);
    status.notifyMacosAutoTrackStop = reader.optional("notify_macos_auto_track_stop", json::asBool);
    status.notifyMacosAppBlocked = reader.optional("notify_macos_app_blocked", json::asBool);
    status.lowLpThreshold = reader.optional("low_lp_threshold", json::asDouble);
    status.highLpThreshold = reader.optional("high_lp_threshold", json::asDouble);
    status.hasDeviceToken = reader.optional("has_device_token", json::asBool);
    status.accountDeletedAt = reader.optional("account_deleted_at", json::asDouble);
    status.daemonBootId = reader.text("daemon_boot_id");
    status.filterHealthResult = reader.text("filter_health_result");
    status.authTokenInvalid = reader.optional("auth_token_invalid", json::asBool);
    status.autoTrackSessions = reader.autoTrackSessions("auto_track_sessions");
    status.pendingReminders = reader.queue<PendingReminder>("pending_reminders");
    status.daemonVersion = reader.text("daemon_version");
    status.pendingAppRejections = reader.queue<PendingAppRejection>("pending_app_rejections");
    status.pendingTaskResumes = reader.queue<PendingTaskResume>("pending_task_resumes");
    status.pendingLocalAlerts = reader.queue<PendingLocalAlert>("pending_local_alerts");
    status.removal = reader.removal();
    status.leaseBootSessionUUID = reader.text("lease_boot_session_uuid");
    status.leaseUntilUptimeNs = reader.optional("lease_until_uptime_ns", json::asUint64);
    return status;
}

}

BlockingStatusDecoder::BlockingStatusDecoder()
    : m_pool(std::make_shared<DocumentPool>())
{
}

BlockingStatusDecoder::~BlockingStatusDecoder() = default;

std::expected<std::shared_ptr<const BlockingStatus>, DaemonFailure> BlockingStatusDecoder::decode(
    const PaddedBuffer& reply)
{
    auto document = m_pool->take();
    const auto root = json::parse(document->parser, reply);
    if (!root)
        return std::unexpected(root.error());
    const auto object = json::asObject(*root);
    if (!object)
        return std::unexpected(DaemonError { DaemonError::Kind::invalidResponse, {} });

    StatusReader reader(*object, document->lists);
    auto status = std::make_shared<BlockingStatus>(readStatus(reader));
    if (reader.error())
        return std::unexpected(*reader.error());
    status->listStorage = std::move(document);
    return status;
}

}
