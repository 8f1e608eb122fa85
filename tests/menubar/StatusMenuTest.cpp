#include "menubar/StatusMenu.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

StatusMenuState initial()
{
    StatusMenuState state;
    state.version = "0.121.0";
    state.service = { "Blocking Service: Checking…", ComponentAction::none };
    state.filter = { "Content Filter: Checking…", ComponentAction::none };
    return state;
}

StatusMenuState answering()
{
    auto state = initial();
    state.contact = ServiceContact::answering;
    state.blocking = true;
    state.energy = 41.999;
    return state;
}

const MenuItem& itemOf(const StatusItemContent& content, MenuCommand command)
{
    for (const auto& item : content.menu.items) {
        if (item.id == static_cast<MenuItemId>(command))
            return item;
    }
    throw std::out_of_range("no such item");
}

std::string shown(const Menu& menu)
{
    std::string text;
    for (const auto& item : menu.items) {
        if (item.kind == MenuItemKind::separator)
            text += "---\n";
        else if (item.visible)
            text += item.title + (item.keyEquivalent.empty() ? "" : " [" + item.keyEquivalent + "]")
                + (item.enabled ? "" : " (disabled)") + "\n";
    }
    return text;
}

}

TEST(StatusMenu, BeginsWithEverythingUnknown)
{
    const auto content = statusItemContent(initial());
    EXPECT_EQ(content.image, StatusImage::unknown);
    EXPECT_EQ(content.description, "Brevanta — status unknown");
    EXPECT_EQ(shown(content.menu),
        "Open Brevanta [o]\nBrevanta 0.121.0 (disabled)\nCheck for Updates… (disabled)\nReload [r]\n"
        "Content Filter: Checking… (disabled)\nBlocking Service: Checking… (disabled)\n---\n"
        "Blocking: Inactive (disabled)\n---\nQuit [q]\n");
}

TEST(StatusMenu, TheOrderAndTheTagsNeverChange)
{
    auto busy = answering();
    busy.activeTaskTitle = "Write";
    busy.blockReason = "Focus";
    busy.service.action = ComponentAction::restartService;
    for (const auto& state : { initial(), busy }) {
        std::vector<int> tags;
        for (const auto& item : statusItemContent(state).menu.items)
            tags.push_back(item.tag);
        EXPECT_EQ(tags, (std::vector { 0, 0, 0, 0, 300, 301, 200, 201, 0, 100, 102, 101, 0, 400 }));
    }
}

TEST(StatusMenu, TheImageAndTheBlockingLineFollowTheService)
{
    struct Case {
        ServiceContact contact;
        bool blocking;
        double energy;
        StatusImage image;
        const char* description;
        const char* line;
    };
    for (const auto& expected : {
             Case { ServiceContact::answering, true, 41.999, StatusImage::block, "Brevanta — blocking",
                 "Blocking: Active (42.00 Coins)" },
             Case { ServiceContact::answering, false, -0.5, StatusImage::open, "Brevanta — not blocking",
                 "Blocking: Inactive (-0.50 Coins)" },
             Case { ServiceContact::starting, true, 42, StatusImage::unknown, "Brevanta — status unknown",
                 "Blocking service starting" },
             Case { ServiceContact::unreachable, true, 42, StatusImage::unknown, "Brevanta — status unknown",
                 "Blocking service unreachable" },
         }) {
        auto state = initial();
        state.contact = expected.contact;
        state.blocking = expected.blocking;
        state.energy = expected.energy;
        const auto content = statusItemContent(state);
        EXPECT_EQ(content.image, expected.image);
        EXPECT_EQ(content.description, expected.description);
        EXPECT_EQ(itemOf(content, MenuCommand::showBlocking).title, expected.line);
    }
}

TEST(StatusMenu, TaskAndReasonShowOnlyWhileTheyAreTrue)
{
    auto state = answering();
    state.activeTaskTitle = "Write\nthe_report & more";
    state.blockReason = "";
    auto content = statusItemContent(state);
    EXPECT_TRUE(itemOf(content, MenuCommand::showActiveTask).visible);
    EXPECT_EQ(itemOf(content, MenuCommand::showActiveTask).title, "Active: Write the_report & more");
    EXPECT_FALSE(itemOf(content, MenuCommand::showReason).visible);

    state.blockReason = "Coins are used up";
    content = statusItemContent(state);
    EXPECT_EQ(itemOf(content, MenuCommand::showReason).title, "Reason: Coins are used up");

    state.contact = ServiceContact::unreachable;
    content = statusItemContent(state);
    EXPECT_FALSE(itemOf(content, MenuCommand::showActiveTask).visible);
    EXPECT_FALSE(itemOf(content, MenuCommand::showReason).visible);
}

TEST(StatusMenu, AHeldQuitIsTold)
{
    auto state = answering();
    state.quit = QuitLine::held;
    const auto content = statusItemContent(state);
    const auto& item = itemOf(content, MenuCommand::quit);
    EXPECT_EQ(item.title, "Quitting after the install finishes…");
    EXPECT_EQ(item.tag, 400);
    state.quit = QuitLine::heldByRemoval;
    EXPECT_EQ(itemOf(statusItemContent(state), MenuCommand::quit).title, "Quitting after the removal finishes…");
}

TEST(StatusMenu, ARestartIsOfferedOnlyAsTheRemedyAndALineWithAnActionCanBeChosen)
{
    auto state = answering();
    state.service = { "⚠ Restart Blocking Service…", ComponentAction::restartService };
    state.updater = Availability::available;
    auto content = statusItemContent(state);
    EXPECT_TRUE(itemOf(content, MenuCommand::restartService).visible);
    EXPECT_TRUE(itemOf(content, MenuCommand::blockingService).enabled);
    EXPECT_TRUE(itemOf(content, MenuCommand::checkForUpdates).enabled);

    state.service = { "⚠ Install Blocking Service…", ComponentAction::installService };
    EXPECT_FALSE(itemOf(statusItemContent(state), MenuCommand::restartService).visible);
}

}
