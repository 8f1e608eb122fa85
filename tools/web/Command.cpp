#include "web/Command.h"

#include "service/Command.h"
#include "service/CommandWords.h"
#include "service/JsonText.h"
#include "service/NumberText.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <optional>
#include <string_view>

namespace brevanta::web {

using service::CommandWords;
using service::fail;

namespace {

struct Context {
    WebServer& server;
    const std::function<void()>& quit;
    const Answer& answer;
};

// What a command does, unless the words do not fit.
enum class Fit { fits, misused };

struct CommandEntry {
    std::string_view name;
    std::string_view usage;
    std::string_view effect;
    Fit (*run)(const Context&, CommandWords&);
};

}

static void answerDone(const Context& context, const std::expected<void, service::ServiceError>& done)
{
    context.answer(done ? Result(std::string()) : Result(std::unexpected(done.error())));
}

template <Misbehaviour::Mode mode> static Fit misbehave(const Context& context, CommandWords& words)
{
    const auto misbehaviour = Misbehaviour::parse(mode, words);
    if (!misbehaviour)
        return Fit::misused;
    answerDone(context, context.server.misbehave(*misbehaviour));
    return Fit::fits;
}

static Fit behave(const Context& context, CommandWords& words)
{
    if (!words.isAtEnd())
        return Fit::misused;
    answerDone(context, context.server.behave());
    return Fit::fits;
}

static Fit chooseCertificate(const Context& context, CommandWords& words)
{
    const auto word = words.next();
    if (!words.isAtEnd() || (word != "own" && word != "other"))
        return Fit::misused;
    answerDone(context,
        context.server.use(word == "own" ? WebServer::CertificateChoice::own : WebServer::CertificateChoice::other));
    return Fit::fits;
}

static Fit countRequests(const Context& context, CommandWords& words)
{
    if (!words.isAtEnd())
        return Fit::misused;
    context.answer(service::jsonText(context.server.log().counts()));
    return Fit::fits;
}

static Fit showLastRequest(const Context& context, CommandWords& words)
{
    if (!words.isAtEnd())
        return Fit::misused;
    context.answer(service::jsonText(context.server.log().last()));
    return Fit::fits;
}

static Fit awaitRequests(const Context& context, CommandWords& words)
{
    const auto path = words.next();
    auto text = words.next();
    if (!path || !text || !words.isAtEnd())
        return Fit::misused;
    const bool isRelative = text->starts_with('+');
    auto& log = context.server.log();
    const auto count = service::parseCount(
        std::string_view(*text).substr(isRelative ? 1 : 0), std::numeric_limits<std::uint32_t>::max());
    if (!count)
        return Fit::misused;
    log.whenCounted(
        *path, *count + (isRelative ? log.countOf(*path) : 0), [answer = context.answer] { answer(std::string()); });
    return Fit::fits;
}

static Fit evaluate(const Context& context, CommandWords& words)
{
    if (words.isAtEnd())
        return Fit::misused;
    if (auto* driver = context.server.driver())
        driver->evaluate(words.rest(), context.answer);
    else
        context.answer(fail("there is no driver; see --driver"));
    return Fit::fits;
}

static Fit showPorts(const Context& context, CommandWords& words)
{
    if (!words.isAtEnd())
        return Fit::misused;
    context.answer(std::to_string(context.server.ports().front().number()));
    return Fit::fits;
}

static Fit quit(const Context& context, CommandWords& words)
{
    if (!words.isAtEnd())
        return Fit::misused;
    context.answer(std::string());
    context.quit();
    return Fit::fits;
}

static Fit showHelp(const Context& context, CommandWords& words);

static constexpr CommandEntry commands[] = {
    { "await", "await PATH COUNT|+COUNT", "answers once so many requests for the path have come in", awaitRequests },
    { "behave", "behave", "ends the misbehaviour", behave },
    { "certificate", "certificate own|other", "serves its own certificate, or one that nobody trusts",
        chooseCertificate },
    { "close", "close [times N]", "closes connections without an answer", misbehave<Misbehaviour::Mode::close> },
    { "delay", "delay MS [times N]", "answers so much later", misbehave<Misbehaviour::Mode::delay> },
    { "evaluate", "evaluate EXPRESSION", "the expression's value in the page; needs --driver", evaluate },
    { "help", "help", "these lines", showHelp },
    { "hang", "hang [times N]", "takes requests and does not answer", misbehave<Misbehaviour::Mode::hang> },
    { "last-request", "last-request", "the last request", showLastRequest },
    { "port", "port", "the port of the application", showPorts },
    { "quit", "quit", "ends the web server", quit },
    { "redirect", "redirect URL [times N]", "sends clients elsewhere", misbehave<Misbehaviour::Mode::redirect> },
    { "refuse", "refuse", "nobody listens, until 'behave'", misbehave<Misbehaviour::Mode::refuse> },
    { "requests", "requests", "how many requests have come in, by path", countRequests },
    { "status", "status CODE [times N]", "answers with an HTTP status", misbehave<Misbehaviour::Mode::status> },
};

static Fit showHelp(const Context& context, CommandWords& words)
{
    if (!words.isAtEnd())
        return Fit::misused;
    std::string lines;
    for (const auto& command : commands)
        lines += service::helpLine(command.usage, command.effect);
    context.answer(lines);
    return Fit::fits;
}

void runCommand(
    WebServer& server, const std::function<void()>& quitServer, const std::string& line, const Answer& answer)
{
    CommandWords words(line);
    const auto name = words.next();
    if (!name)
        return answer(fail("no command"));
    const auto* entry = std::ranges::find(commands, std::string_view(*name), &CommandEntry::name);
    if (entry == std::end(commands))
        return answer(fail("unknown command '" + *name + "' (see help)"));
    if (entry->run({ .server = server, .quit = quitServer, .answer = answer }, words) == Fit::misused)
        answer(fail("usage: " + std::string(entry->usage)));
}

}
