#include "web/PageDriver.h"

#include "service/JsonText.h"
#include "service/NumberText.h"
#include "web/Response.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace brevanta::web {

using service::fail;

// A page asks again after this time, so that requests of pages that have gone do not add up.
static constexpr std::chrono::seconds longestAsking { 25 };
static constexpr std::string_view scriptPrefix = "/driver/script/";

static nlohmann::json order(std::uint64_t number) { return { { "number", number } }; }

void PageDriver::evaluate(std::string expression, Answer answer)
{
    const auto number = ++m_lastNumber;
    auto timer = EventSource::after(m_patience, [this, number] {
        const auto& evaluation = m_evaluations.at(number);
        finish(number,
            fail(evaluation.wasFetched ? "the page has not answered in time" : "no page has asked for it in time"));
    });
    m_evaluations.emplace(number,
        Evaluation { .expression = std::move(expression), .answer = std::move(answer), .timer = std::move(timer) });
    for (const auto& asker : std::exchange(m_askers, {})) {
        respondWithJson(asker.message.get(), order(number));
        soup_server_message_unpause(asker.message.get());
    }
}

void PageDriver::handle(SoupServerMessage* message, const std::string& path)
{
    const std::string method = soup_server_message_get_method(message);
    if (path == "/driver/next" && method == "GET")
        tellNext(message);
    else if (path.starts_with(scriptPrefix) && method == "GET")
        sendScript(message, path.substr(scriptPrefix.size()));
    else if (path == "/driver/result" && method == "POST")
        takeResult(message);
    else if (path == "/driver/left" && method == "POST")
        takeLeaving(message);
    else
        respondWithStatus(message, SOUP_STATUS_NOT_FOUND);
}

void PageDriver::tellNext(SoupServerMessage* message)
{
    const auto waiting
        = std::ranges::find_if(m_evaluations, [](const auto& entry) { return !entry.second.wasFetched; });
    if (waiting != m_evaluations.end())
        return respondWithJson(message, order(waiting->first));
    soup_server_message_pause(message);
    m_askers.push_back({ .message = shared(message), .timer = {} });
    const auto asker = std::prev(m_askers.end());
    asker->timer = EventSource::after(longestAsking, [this, asker] {
        soup_server_message_set_status(asker->message.get(), SOUP_STATUS_NO_CONTENT, nullptr);
        soup_server_message_unpause(asker->message.get());
        m_askers.erase(asker);
    });
}

void PageDriver::sendScript(SoupServerMessage* message, const std::string& numberAndDocument)
{
    const auto slash = std::min(numberAndDocument.find('/'), numberAndDocument.size());
    const auto number = numberAndDocument.substr(0, slash);
    const auto document = numberAndDocument.substr(slash);
    const auto parsed = service::parseCount(number, static_cast<std::size_t>(m_lastNumber));
    const auto found = parsed ? m_evaluations.find(*parsed) : m_evaluations.end();
    if (found == m_evaluations.end() || found->second.wasFetched || m_leftDocuments.contains(document))
        return respondWithStatus(message, SOUP_STATUS_NOT_FOUND);
    found->second.wasFetched = true;
    found->second.document = document;
    // The expression may end with a comment, hence the line of its own.
    respond(message, SOUP_STATUS_OK, "text/javascript; charset=utf-8",
        "brevantaDriver.run(" + number + ", async () => (\n" + found->second.expression + "\n));\n");
}

static std::optional<Result> resultIn(const nlohmann::json& report)
{
    const auto error = report.find("error");
    if (error != report.end() && error->is_string()) {
        auto message = error->get<std::string>();
        std::ranges::replace_if(message, [](char character) { return character == '\n' || character == '\r'; }, ' ');
        return fail(message);
    }
    // JSON as a text, so that the order of its keys stays the page's own; it is on one line when a page made it.
    const auto json = report.find("json");
    if (json == report.end() || !json->is_string())
        return std::nullopt;
    const auto& text = json->get_ref<const std::string&>();
    if (text.find_first_of("\r\n") != std::string::npos || !nlohmann::json::accept(text))
        return std::nullopt;
    return text;
}

void PageDriver::takeResult(SoupServerMessage* message)
{
    const auto report = service::parseJson(requestBody(message));
    if (!report || !report->is_object())
        return respondWithStatus(message, SOUP_STATUS_BAD_REQUEST);
    const auto number = report->find("number");
    const auto result = resultIn(*report);
    if (number == report->end() || !number->is_number_unsigned() || !result)
        return respondWithStatus(message, SOUP_STATUS_BAD_REQUEST);
    soup_server_message_set_status(message, SOUP_STATUS_NO_CONTENT, nullptr);
    finish(number->get<std::uint64_t>(), *result);
}

void PageDriver::takeLeaving(SoupServerMessage* message)
{
    const auto report = service::parseJson(requestBody(message));
    if (!report || !report->is_object())
        return respondWithStatus(message, SOUP_STATUS_BAD_REQUEST);
    const auto name = report->find("document");
    if (name == report->end() || !name->is_string())
        return respondWithStatus(message, SOUP_STATUS_BAD_REQUEST);
    soup_server_message_set_status(message, SOUP_STATUS_NO_CONTENT, nullptr);
    const auto document = "/" + name->get<std::string>();
    m_leftDocuments.insert(document);
    std::vector<std::uint64_t> numbers;
    for (const auto& [number, evaluation] : m_evaluations) {
        if (evaluation.wasFetched && evaluation.document == document)
            numbers.push_back(number);
    }
    for (const auto number : numbers)
        finish(number, fail("the page was left before it answered"));
}

void PageDriver::finish(std::uint64_t number, const Result& result)
{
    // A result that comes too late finds nobody.
    auto node = m_evaluations.extract(number);
    if (!node.empty())
        node.mapped().answer(result);
}

}
