// A whole poll, against receiving the reply and comparing it with the last one, and against the same done with
// nlohmann::json throughout.
#include "bench/Client.h"
#include "bench/Measure.h"
#include "bench/Reports.h"
#include "bench/SharedMemoryFolder.h"
#include "posix/FileStorePosix.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <vector>

namespace brevanta::bench {

namespace {

// Keeps nothing, so that a changed tick is measured without the file system.
class DiscardingFiles final : public FileStore {
public:
    [[nodiscard]] std::expected<FileStamp, FileStoreError> replace(
        const std::filesystem::path&, std::string_view contents, FilePermissions) override
    {
        m_stamp.size = contents.size();
        ++m_stamp.inode;
        return m_stamp;
    }
    [[nodiscard]] std::optional<FileStamp> stamp(const std::filesystem::path&) const override { return m_stamp; }
    [[nodiscard]] std::expected<std::string, FileStoreError> read(const std::filesystem::path&) const override
    {
        return std::unexpected(FileStoreError { .message = "nothing is kept", .kind = FileStoreError::Kind::failed });
    }
    [[nodiscard]] std::expected<void, FileStoreError> createFolder(const std::filesystem::path&) override { return {}; }
    [[nodiscard]] bool isFolder(const std::filesystem::path&) const override { return true; }
    [[nodiscard]] std::optional<FilePermissions> permissions(const std::filesystem::path&) const override
    {
        return FilePermissions::ownerOnly;
    }

private:
    FileStamp m_stamp;
};

// A client that does with one library what the tick does.
class PlainClient {
public:
    void tick(const std::string& text)
    {
        receive(text, m_reply);
        if (m_reply.view() == m_last.view())
            return;
        const auto reply = Json::parse(m_reply.view());
        m_domains = reply.at("blocked_domains").get<std::vector<std::string>>();
        m_state = Json {
            { "shouldBlock", reply.at("should_block") }, { "blockedDomains", m_domains },
            { "authToken", reply.at("auth_token") }
        }.dump();
        m_script = "window.dispatchEvent(new CustomEvent('kestrelune_blocking_status', { detail: "
            + Json { { "blocking", reply.at("should_block") }, { "energy", reply.at("energy") },
                  { "blockedDomains", m_domains } }
                  .dump()
            + " }));";
        std::swap(m_reply, m_last);
    }

private:
    PaddedBuffer m_reply;
    PaddedBuffer m_last;
    std::vector<std::string> m_domains;
    std::string m_state;
    std::string m_script;
};

void reportUnchanged(std::size_t entries)
{
    const auto text = replyWith(entries);
    const SharedMemoryFolder folder;
    FileStorePosix files;
    Client client(files, folder.path());
    PaddedBuffer received;
    PaddedBuffer last;
    last.assign(text);
    volatile bool sink = false;
    client.tick(text);
    double mainThread = 1;
    const auto seconds = measureBoth(
        [&] {
            client.tick(text);
            mainThread = std::min(mainThread, client.mainThreadSeconds());
        },
        [&] {
            receive(text, received);
            sink = received.view() == last.view();
        });
    printRow("tick with the same bytes / receive and compare", entries, seconds, "at most 1.1");
    printRow("  its part on the main thread / the whole", entries, { mainThread, seconds.work }, "at most 0.150 ms");
}

void reportChanged(std::size_t entries)
{
    const std::string texts[] = { replyWith(entries, 0), replyWith(entries, 1) };
    DiscardingFiles files;
    Client client(files, "/");
    PlainClient plain;
    PaddedBuffer received;
    PaddedBuffer last;
    last.assign(texts[0]);
    volatile bool sink = false;
    std::size_t turn = 0;
    double mainThread = 1;
    const auto tick = [&] {
        client.tick(texts[++turn % 2]);
        mainThread = std::min(mainThread, client.mainThreadSeconds());
    };
    for (int round = 0; round < 4; ++round)
        tick();
    const auto toFloor = measureBoth(tick, [&] {
        receive(texts[0], received);
        sink = received.view() == last.view();
    });
    std::size_t plainTurn = 0;
    const auto toPlain = measureBoth(tick, [&] { plain.tick(texts[++plainTurn % 2]); });
    printRow("tick with everything changed / receive and compare", entries, toFloor);
    printRow("tick with everything changed / nlohmann throughout", entries, toPlain,
        entries >= 20'000 ? "at most 0.15" : "");
    printRow("  its part on the main thread, without the engine / the whole", entries, { mainThread, toFloor.work });
}

}

void reportTicks(std::size_t entries)
{
    reportUnchanged(entries);
    reportChanged(entries);
}

}
