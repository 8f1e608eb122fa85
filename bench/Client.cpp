#include "bench/Client.h"

#include <chrono>
#include <cstdlib>
#include <nlohmann/json.hpp>

namespace brevanta::bench {

bool Steps::run()
{
    bool ran = false;
    for (; !m_work.empty(); ran = true) {
        const auto work = std::move(m_work.front());
        m_work.pop_front();
        work();
    }
    return ran;
}

Client::Client(FileStore& files, const std::filesystem::path& folder)
    : m_writer({ .queue = m_queue,
          .files = files,
          .container = [folder] { return folder; },
          .fileName = std::string(sharedBlockStateFileName("prod")) })
{
}

void Client::tick(const std::string& reply)
{
    using Clock = std::chrono::steady_clock;
    m_reply = &reply;
    m_mainThreadSeconds = 0;
    m_daemonClient.getStatus(std::nullopt, [this](const auto& status) {
        if (!status)
            std::abort();
        m_writer.submit(*status);
        m_delivery.push(*status);
    });
    bool ran = true;
    while (ran) {
        ran = m_queue.run();
        const auto begin = Clock::now();
        ran = m_mainLoop.run() || ran;
        m_mainThreadSeconds += std::chrono::duration<double>(Clock::now() - begin).count();
    }
}

}
