#include "web/BackEnd.h"

#include "web/GLibPointers.h"
#include "web/Response.h"

#include <array>
#include <cstddef>
#include <gio/gunixsocketaddress.h>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <string_view>

namespace brevanta::web {

// The token is none of them.
static constexpr std::array keys { "block_reason", "active_task_title", "active_task_earn_rate", "low_lp_threshold",
    "high_lp_threshold", "auto_track_apps", "auto_track_sessions", "metered_domains", "pending_reminders",
    "pending_local_alerts", "pending_app_rejections", "pending_task_resumes" };
static constexpr std::size_t mostEntries = 20;
static constexpr guint patienceInSeconds = 2;

// What the service answers to the commands, a line each.
static std::optional<std::string> ask(const std::string& socketPath, const std::string& commands)
{
    const GLibPointer<GSocketClient> client(g_socket_client_new());
    g_socket_client_set_timeout(client.get(), patienceInSeconds);
    const GLibPointer<GSocketAddress> address(g_unix_socket_address_new(socketPath.c_str()));
    const GLibPointer<GSocketConnection> connection(
        g_socket_client_connect(client.get(), G_SOCKET_CONNECTABLE(address.get()), nullptr, nullptr));
    if (!connection)
        return std::nullopt;
    auto* stream = G_IO_STREAM(connection.get());
    // The end of the commands makes the service close the connection behind its last answer.
    if (!g_output_stream_write_all(
            g_io_stream_get_output_stream(stream), commands.data(), commands.size(), nullptr, nullptr, nullptr)
        || !g_socket_shutdown(g_socket_connection_get_socket(connection.get()), FALSE, TRUE, nullptr))
        return std::nullopt;
    std::string answers;
    std::array<char, 65536> buffer;
    for (;;) {
        const auto size
            = g_input_stream_read(g_io_stream_get_input_stream(stream), buffer.data(), buffer.size(), nullptr, nullptr);
        if (size < 0)
            return std::nullopt;
        if (!size)
            return answers;
        answers.append(buffer.data(), static_cast<std::size_t>(size));
    }
}

static void add(nlohmann::json& day, const std::string& key, nlohmann::json value)
{
    if (value.is_array() && value.size() > mostEntries) {
        day[key + "_count"] = value.size();
        value.erase(value.begin() + mostEntries, value.end());
    }
    day[key] = std::move(value);
}

static std::optional<std::string> dayOf(const std::string& socketPath)
{
    std::string commands;
    for (const auto* key : keys)
        commands += std::string("get ") + key + '\n';
    const auto answers = ask(socketPath, commands);
    if (!answers)
        return std::nullopt;
    static constexpr std::string_view success = "ok ";
    auto day = nlohmann::json::object();
    std::istringstream lines(*answers);
    for (const auto* key : keys) {
        std::string line;
        if (!std::getline(lines, line))
            return std::nullopt;
        if (!line.starts_with(success))
            continue;
        if (auto value = nlohmann::json::parse(line.substr(success.size()), nullptr, false); !value.is_discarded())
            add(day, key, std::move(value));
    }
    return day.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

void BackEnd::handle(SoupServerMessage* message) const
{
    struct Asking {
        GLibPointer<SoupServerMessage> message;
        std::string socketPath;
        std::optional<std::string> day {};
    };
    soup_server_message_pause(message);
    const GLibPointer<GTask> task(g_task_new(
        nullptr, nullptr,
        [](GObject*, GAsyncResult* result, gpointer) {
            const auto& asked = *static_cast<Asking*>(g_task_get_task_data(G_TASK(result)));
            if (asked.day)
                respond(asked.message.get(), SOUP_STATUS_OK, "application/json", *asked.day);
            else
                respondWithStatus(asked.message.get(), SOUP_STATUS_SERVICE_UNAVAILABLE);
            soup_server_message_unpause(asked.message.get());
        },
        nullptr));
    auto asking = std::make_unique<Asking>(Asking { .message = shared(message), .socketPath = m_serviceControlPath });
    g_task_set_task_data(task.get(), asking.release(), [](gpointer data) { delete static_cast<Asking*>(data); });
    g_task_run_in_thread(task.get(), [](GTask* asked, gpointer, gpointer data, GCancellable*) {
        auto& request = *static_cast<Asking*>(data);
        request.day = dayOf(request.socketPath);
        g_task_return_boolean(asked, TRUE);
    });
}

}
