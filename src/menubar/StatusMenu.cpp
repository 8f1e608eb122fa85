#include "menubar/StatusMenu.h"

#include "base/Text.h"

namespace brevanta {

namespace {

// The numbers by which the lines are known to the system's accessibility and scripting tools.
constexpr int filterTag = 300;
constexpr int filterRestartTag = 301;
constexpr int serviceTag = 200;
constexpr int restartTag = 201;
constexpr int blockingTag = 100;
constexpr int reasonTag = 101;
constexpr int activeTaskTag = 102;
constexpr int quitTag = 400;

MenuItem command(MenuCommand id, std::string title, int tag = 0)
{
    return { .id = static_cast<MenuItemId>(id), .tag = tag, .title = std::move(title), .keyEquivalent = {} };
}

MenuItem withKey(MenuItem item, const char* key)
{
    item.keyEquivalent = key;
    return item;
}

MenuItem enabledIf(MenuItem item, bool enabled)
{
    item.enabled = enabled;
    return item;
}

MenuItem information(MenuItem item) { return enabledIf(std::move(item), false); }

// A line that is shown only while there is something to say.
MenuItem detail(MenuCommand id, int tag, const char* label, const std::optional<std::string>& text)
{
    const bool shown = text && !text->empty();
    auto item = information(command(id, shown ? label + singleLine(*text) : std::string {}, tag));
    item.visible = shown;
    return item;
}

MenuItem component(MenuCommand id, int tag, const ComponentLine& line)
{
    return enabledIf(command(id, line.title, tag), line.action != ComponentAction::none);
}

MenuItem restart(const ComponentLine& service)
{
    auto item = command(MenuCommand::restartService, "Restart Blocking Service…", restartTag);
    item.visible = service.action == ComponentAction::restartService;
    return item;
}

MenuItem filterRestart(bool isNeeded)
{
    auto item = information(
        command(MenuCommand::showFilterRestart, "Content Filter: Restart this Mac to finish", filterRestartTag));
    item.visible = isNeeded;
    return item;
}

MenuItem separator() { return { .kind = MenuItemKind::separator, .title = {}, .keyEquivalent = {} }; }

const char* quitTitle(QuitLine quit)
{
    switch (quit) {
    case QuitLine::held:
        return "Quitting after the install finishes…";
    case QuitLine::heldByRemoval:
        return "Quitting after the removal finishes…";
    case QuitLine::offered:
        break;
    }
    return "Quit";
}

std::string blockingTitle(const StatusMenuState& state)
{
    switch (state.contact) {
    case ServiceContact::notAskedYet:
        return "Blocking: Inactive";
    case ServiceContact::starting:
        return "Blocking service starting";
    case ServiceContact::unreachable:
        return "Blocking service unreachable";
    case ServiceContact::answering:
        break;
    }
    return (state.blocking ? "Blocking: Active (" : "Blocking: Inactive (") + formatFixed(state.energy, 2) + " Coins)";
}

StatusImage image(const StatusMenuState& state)
{
    if (state.contact != ServiceContact::answering)
        return StatusImage::unknown;
    return state.blocking ? StatusImage::block : StatusImage::open;
}

const char* description(StatusImage image)
{
    switch (image) {
    case StatusImage::open:
        return "Brevanta — not blocking";
    case StatusImage::block:
        return "Brevanta — blocking";
    case StatusImage::unknown:
        break;
    }
    return "Brevanta — status unknown";
}

}

StatusItemContent statusItemContent(const StatusMenuState& state)
{
    const bool answering = state.contact == ServiceContact::answering;
    const auto whileAnswering
        = [answering](const auto& text) { return answering ? text : std::optional<std::string> {}; };
    const auto shown = image(state);
    return {
        .image = shown,
        .description = description(shown),
        .menu = { {
            withKey(command(MenuCommand::openWindow, "Open Brevanta"), "o"),
            information(command(MenuCommand::showVersion, "Brevanta " + state.version)),
            enabledIf(
                command(MenuCommand::checkForUpdates, "Check for Updates…"), state.updater == Availability::available),
            withKey(command(MenuCommand::reloadWindow, "Reload"), "r"),
            component(MenuCommand::contentFilter, filterTag, state.filter),
            filterRestart(state.filterNeedsRestart),
            component(MenuCommand::blockingService, serviceTag, state.service),
            restart(state.service),
            separator(),
            information(command(MenuCommand::showBlocking, blockingTitle(state), blockingTag)),
            detail(MenuCommand::showActiveTask, activeTaskTag, "Active: ", whileAnswering(state.activeTaskTitle)),
            detail(MenuCommand::showReason, reasonTag, "Reason: ", whileAnswering(state.blockReason)),
            separator(),
            withKey(command(MenuCommand::quit, quitTitle(state.quit), quitTag), "q"),
        } },
    };
}

}
