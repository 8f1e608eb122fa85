#include "tour/Tour.h"

#include <sstream>

namespace brevanta::tour {

using functional::BrevantaClient;
using functional::Milliseconds;

static constexpr Milliseconds patience { 10000 };
static constexpr Milliseconds startUpPatience { 30000 };
static constexpr int windowLeft = 40;
static constexpr int windowTop = DesktopPanel::height + 12;

Tour::Tour(std::string outputDirectory, TourReport& report)
    : m_report(report)
    , m_outputDirectory(std::move(outputDirectory))
    , m_bench({ .logPath = m_outputDirectory + "/client.log",
          .preparations = { "energy 24", "set low_lp_threshold 10", "set high_lp_threshold 40" },
          .notificationTaker = functional::NotificationTaker::nobody,
          .webPreparations = { "refuse" } })
{
}

std::expected<void, std::string> Tour::play()
{
    m_report.tell("A display, a bus and the stand-ins for the blocking service and the web server are started.");
    if (auto started = m_bench.startSurroundings(); !started)
        return started;
    m_report.tell("A panel and a notification service are started on that display.");
    auto panel = DesktopPanel::start(m_bench.display(), m_bench.bus());
    if (!panel)
        return std::unexpected(panel.error());
    m_panel = std::move(*panel);
    auto notifications = NotificationMonitor::start(m_bench.bus());
    if (!notifications)
        return std::unexpected(notifications.error());
    m_notifications = std::move(*notifications);
    m_scene = std::make_unique<Scene>(m_bench.display(), m_outputDirectory);

    m_report.tell("The client starts, with 24 coins and nothing blocked, while the web server is away.");
    if (auto started = m_bench.startClient(); !started)
        return started;
    showWindow();
    loadPage();
    signIn();
    turnOnFilter();
    startAgain();
    workOnTask();
    beReminded();
    runLow();
    runOut();
    loseService();
    regainService();
    losePage();
    quit();
    return {};
}

void Tour::showWindow()
{
    seeDescription("Brevanta — not blocking");
    seeLine("Blocking: Inactive (24.00 Coins)");
    choose("Open Brevanta");
    const auto& display = m_bench.display();
    m_report.sees(display.awaitWindows(BrevantaClient::windowTitle, 1, patience), "the client's window");
    placeWindow();
}

void Tour::loadPage()
{
    seeLog("showPlaceholder(retrying)", "the client says that it cannot reach the application, and tries again");
    takePictureOfWindow("shell-retrying");
    m_report.tell("The web server comes back, slowly.");
    tellWeb("delay 4000");
    choose("Open Brevanta");
    takePictureOfWindow("shell-loading");
    tellWeb("behave");
    seePage("window.demo !== undefined", "the web application");
    seeLog("phase=usable", "the client counts the page as usable");
}

void Tour::signIn()
{
    m_report.tell("Ada signs in on the page.");
    seePage("(document.getElementById('name').value = 'Ada', document.getElementById('sign-in').click(), true)",
        "the button is pressed");
    m_report.sees(m_bench.service().command("await set_auth_token 1").has_value(), "the service gets the token");
    seeLog("auth_token bridge: daemon accepted token", "the service takes it");
    tellService("list blocked_domains 6");
    seePage("window.demo.events.some((e) => e.name === 'kestrelune_blocking_status' && e.detail.energy === 24)",
        "the page shows the status that the poll pushes");
    takePictureOfWindow("shell-usable");
    takePicture("1-window");
}

void Tour::turnOnFilter()
{
    m_report.tell("This machine has never had the content filter.");
    changeSystem({ "service", "installed" });
    changeSystem({ "service", "loaded" });
    seeLine("✓ Blocking Service 0.121.0");
    choose("⚠ Install Content Filter…");
    seeLine("⚠ Approve Content Filter in System Settings…");
    const auto& display = m_bench.display();
    constexpr auto explanation = "Approve the Brevanta content filter";
    m_report.sees(display.awaitWindows(explanation, 1, patience), "an alert that says what has to be allowed");
    for (const auto& window : display.windowsTitled(explanation))
        display.moveWindow(window, (functional::VirtualDisplay::width - window.width) / 2, windowTop + windowLeft);
    takePicture("7-filter-approval");
    m_report.tell("The user allows it.");
    changeSystem({ "filter", "approve" });
    seeLine("✓ Content Filter");
    m_report.sees(display.awaitWindows(explanation, 0, patience), "the alert has gone by itself");
}

// What the user sees when the page is lost, and when it comes back.
void Tour::losePage()
{
    m_report.tell("The page's process dies while the web server has a certificate that nobody trusts.");
    tellWeb("certificate other");
    m_report.sees(m_bench.client().killWebProcess(patience), "the process has gone");
    seeLog("showPlaceholder(unreachable)", "the client says that the application cannot be reached");
    takePictureOfWindow("shell-unreachable");
    m_report.tell("The web server has its own certificate again.");
    tellWeb("certificate own");
    choose("Open Brevanta");
    seePage("window.demo !== undefined && document.getElementById('account-name').textContent === 'Ada'",
        "the page is back, and Ada is still signed in");
}

void Tour::startAgain()
{
    m_report.tell("The window is closed.");
    const auto& display = m_bench.display();
    for (const auto& window : display.windowsTitled(BrevantaClient::windowTitle))
        display.pressCloseButton(window);
    m_report.sees(display.awaitWindows(BrevantaClient::windowTitle, 0, patience), "no window any more");
    m_report.tell("The client is started a second time.");
    const auto second = m_bench.client().startProcess({});
    m_report.sees(second && (*second)->awaitExit(patience) == 0, "the second start ends at once");
    m_report.sees(display.awaitWindows(BrevantaClient::windowTitle, 1, patience), "the first one's window again");
    placeWindow();
}

void Tour::placeWindow()
{
    const auto& display = m_bench.display();
    for (const auto& window : display.windowsTitled(BrevantaClient::windowTitle))
        display.moveWindow(window, windowLeft, windowTop);
}

void Tour::workOnTask()
{
    m_report.tell("A task is begun.");
    tellService("task Write the report 0");
    seeLine("Active: Write the report");
    showMenu("2-task");
}

void Tour::beReminded()
{
    m_report.tell("The service queues a reminder, a timer and a refused application, and repeats them in each reply.");
    tellService(R"(queue reminder {"event_id":1,"task_id":"t","kind":"fire","title":"Read","notification_title":)"
                R"("Read <b>20 pages</b> & rest","body":"\"Dune\" <i>or</i> מתיחה: 5 < 6 & 7 > 6"})");
    tellService(R"(queue alert {"alert_id":2,"kind":"task_timer","notification_title":"Time is up","body":)"
                R"("Write the report","sound_prefix":"task-timer","expires_in_seconds":60,"open":null})");
    tellService(R"(queue rejection {"event_id":3,"task_id":"t","task_title":"Games","closing_session_id":null,)"
                R"("reason":"daily_cap","kind":"rejected_open"})");
    seeNotification("intraday-1", "Read <b>20 pages</b> & rest");
    seeNotification("task-timer-2", "Time is up");
    seeNotification("app-rejected-3", "App not opened");
    takePicture("8-notices");
    m_report.sees(m_bench.service().awaitHandledPolls(2), "two more polls bring the same three");
}

void Tour::runLow()
{
    m_report.tell("Coins are spent down to 8; the low mark is 10.");
    tellService("task none");
    tellService("energy 8");
    seeNotification("low-lp", "Low Coins");
    seeLine("Blocking: Inactive (8.00 Coins)");
    takePicture("3-low-coins");
}

void Tour::runOut()
{
    m_report.tell("The last coin is spent, and the service blocks.");
    tellService("energy 0");
    seeNotification("no-lp", "No Coins");
    seeDescription("Brevanta — blocking");
    seeLine("Blocking: Active (0.00 Coins)");
    showMenu("4-blocking");
}

void Tour::loseService()
{
    m_report.tell("The service is stopped.");
    m_bench.service().stop();
    seeDescription("Brevanta — status unknown");
    const auto isUnreachable = m_bench.menu().awaitEntries(
        [](const functional::MenuEntries& entries) {
            return functional::findEntry(entries, "Blocking service starting")
                || functional::findEntry(entries, "Blocking service unreachable");
        },
        patience);
    m_report.sees(isUnreachable, "the menu says that the service cannot be reached");
    showMenu("5-service-away");
    m_report.tell("The client gives a service some time to start; then it says that it cannot be reached.");
    const auto graceIsOver = m_bench.menu().awaitEntries(
        [](const functional::MenuEntries& entries) {
            return functional::findEntry(entries, "Blocking service unreachable") != nullptr;
        },
        startUpPatience);
    m_report.sees(graceIsOver, "the menu says \"Blocking service unreachable\"");
}

void Tour::regainService()
{
    m_report.tell("The service is started again, and 45 coins are there; the high mark is 40.");
    if (const auto started = m_bench.service().start(); !started)
        m_report.tell(started.error());
    tellService("energy 45");
    tellService("set high_lp_threshold 40");
    seeDescription("Brevanta — not blocking");
    seeLine("Blocking: Inactive (45.00 Coins)");
    seeNotification("high-lp", "Coins Restored");
    m_report.sees(m_notifications->count() == 6, "six notifications in all, none of them twice");
    showMenu("6-coins-restored");
}

void Tour::quit()
{
    choose("Quit");
    const auto status = m_bench.client().process().awaitExit(patience);
    m_report.sees(status == 0, "the client ends with status 0");
    const auto isGone
        = functional::awaitByAsking([this] { return m_bench.client().process().groupMembers().empty(); }, patience);
    m_report.sees(isGone, "no process of the client is left");
}

void Tour::tellService(const std::string& command)
{
    if (const auto answer = m_bench.service().command(command); !answer)
        m_report.sees(false, "the stand-in service takes \"" + command + "\": " + answer.error());
}

void Tour::changeSystem(const std::vector<std::string>& command)
{
    if (const auto changed = m_bench.client().changeSystem(command); !changed)
        m_report.sees(false, changed.error());
}

void Tour::tellWeb(const std::string& command)
{
    if (const auto answer = m_bench.web().command(command); !answer)
        m_report.sees(false, "the stand-in web server takes \"" + command + "\": " + answer.error());
}

void Tour::choose(const std::string& label)
{
    m_report.tell("\"" + label + "\" is chosen in the menu.");
    if (const auto clicked = m_bench.menu().click(label); !clicked)
        m_report.sees(false, clicked.error());
}

void Tour::seeLog(const std::string& text, const std::string& what)
{
    m_report.sees(m_bench.client().process().errors().awaitText(text, startUpPatience), what);
}

void Tour::seePage(const std::string& expression, const std::string& what)
{
    m_report.sees(m_bench.web().awaitTrue(expression, startUpPatience), what);
}

void Tour::seeDescription(const std::string& text)
{
    m_report.sees(m_bench.statusItem().awaitDescription(text), "the status item says \"" + text + "\"");
}

void Tour::seeLine(const std::string& label)
{
    m_report.sees(m_bench.menu().awaitLabel(label), "the menu says \"" + label + "\"");
}

void Tour::seeNotification(const std::string& identifier, const std::string& title)
{
    const auto notification = m_notifications->await(identifier);
    const bool isSeen = notification && notification->title == title;
    m_report.sees(isSeen, "a notification \"" + title + "\"" + (isSeen ? ": " + notification->body : ""));
}

void Tour::showMenu(const std::string& pictureName)
{
    m_report.sees(m_scene->openStatusMenu(), "the menu opens below the status item in the panel");
    const auto entries = m_bench.menu().read();
    std::istringstream lines(entries ? functional::describeMenu(*entries) : entries.error());
    for (std::string line; std::getline(lines, line);)
        m_report.tell("        | " + line);
    takePicture(pictureName);
    m_report.sees(m_scene->closeStatusMenu(), "the menu closes");
}

void Tour::takePicture(const std::string& name)
{
    m_report.sees(m_scene->takePicture(name), "the screen (picture " + name + ".png)");
}

void Tour::takePictureOfWindow(const std::string& name)
{
    const auto windows = m_bench.display().windowsTitled(BrevantaClient::windowTitle);
    m_report.sees(
        windows.size() == 1 && m_scene->takePictureOf(windows.front(), name), "the window (picture " + name + ".png)");
}

}
