#pragma once

#include "platform/LocalSocket.h"

#include <algorithm>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace brevanta {

// Sockets whose peer does what the test says. What was tried is recorded, for all connections together.
class FakeLocalSockets final : public LocalSocketConnector {
public:
    enum class Peer { listens, absent };

    [[nodiscard]] std::unique_ptr<LocalConnection> connect(const std::string& path, int timeoutSeconds) override
    {
        paths.push_back(path);
        timeouts.push_back(timeoutSeconds);
        if (peer == Peer::absent || interrupts)
            return nullptr;
        ++opened;
        return std::make_unique<Connection>(*this);
    }
    void interrupt() override { ++interrupts; }

    Peer peer { Peer::listens };
    std::optional<std::ptrdiff_t> sendResult; // Of every send; all bytes are taken when absent.
    std::deque<std::string> pieces; // What the receives bring, one each; then the end of the stream.
    std::ptrdiff_t endOfPieces { 0 }; // 0 for a peer that closes, negative for one that stays silent.

    std::vector<std::string> paths;
    std::vector<int> timeouts;
    std::vector<std::string> sent;
    std::vector<std::size_t> receiveSizes;
    int opened { 0 };
    int closed { 0 };
    int interrupts { 0 };

private:
    class Connection final : public LocalConnection {
    public:
        explicit Connection(FakeLocalSockets& sockets)
            : m_sockets(sockets)
        {
        }
        ~Connection() override { ++m_sockets.closed; }
        Connection(const Connection&) = delete;
        Connection& operator=(const Connection&) = delete;

        [[nodiscard]] std::ptrdiff_t send(std::span<const char> bytes) override
        {
            m_sockets.sent.emplace_back(bytes.begin(), bytes.end());
            return m_sockets.sendResult.value_or(static_cast<std::ptrdiff_t>(bytes.size()));
        }

        [[nodiscard]] std::ptrdiff_t receive(std::span<char> buffer) override
        {
            m_sockets.receiveSizes.push_back(buffer.size());
            if (m_sockets.pieces.empty())
                return m_sockets.endOfPieces;
            auto& piece = m_sockets.pieces.front();
            const auto count = std::min(piece.size(), buffer.size());
            std::ranges::copy(piece.substr(0, count), buffer.begin());
            piece.erase(0, count);
            if (piece.empty())
                m_sockets.pieces.pop_front();
            return static_cast<std::ptrdiff_t>(count);
        }

    private:
        FakeLocalSockets& m_sockets;
    };
};

}
