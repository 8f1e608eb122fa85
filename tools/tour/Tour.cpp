#include "tour/Tour.h"

#include <sstream>

namespace brevanta::tour {

using functional::BrevantaClient;
using functional::Milliseconds;

static constexpr Milliseconds patience { 10000 };
static constexpr Milliseconds startUpPatience { 30000 };
static constexpr int windowLeft = 20;
static constexpr int windowTop = Desktop::panelHeight + 17;

// What the service blocks, and what costs coins, in each of its runs.
static constexpr const char* whatIsBlocked[] = {
    R"(set blocked_domains ["news.example","shop.example","video.example"])",
    R"(set blocked_apps ["com.example.cards","com.example.chess"])",
    R"(set auto_track_apps ["com.example.video","com.example.chat"])",
};

Tour::Tour(std::string outputDirectory, TourReport& report)
    : m_report(report)
    , m_outputDirectory(std::move(outputDirectory))
    , m_bench({ .logPath = m_outputDirectory + "/client.log",
          .preparations = { "energy 24", "set low_lp_threshold 10", "set high_lp_threshold 40" },
          .notificationTaker = functional::NotificationTaker::nobody,
          .webPreparations = { "refuse" },
          .displaySize = Desktop::size })
{
}

std::expected<void, std::string> Tour::play()
{
    m_report.tell("A display, a bus and the stand-ins for the blocking service and the web server are started.");
    if (auto started = m_bench.startSurroundings(); !started)
        return started;
    m_report.tell("A window manager, a panel and a notification service are started on that display.");
    auto desktop = Desktop::start(m_bench.display(), m_bench.bus());
    if (!desktop)
        return std::unexpected(desktop.error());
    m_desktop = std::move(*desktop);
    auto notifications = NotificationMonitor::start(m_bench.bus());
    if (!notifications)
        return std::unexpected(notifications.error());
    m_notifications = std::move(*notifications);
    m_scene = std::make_unique<Scene>(m_bench.display(), *m_desktop, m_outputDirectory);

    nameWhatIsBlocked();
    m_report.tell("The client starts, with 24 coins and blocking inactive, while the web server is away.");
    if (auto started = m_bench.startClient(); !started)
        return started;
    showWindow();
    loadPage();
    signIn();
    turnOnFilter();
    workOnTask();
    closeWindow();
    beReminded();
    startAgain();
    runLow();
    runOut();
    loseService();
    regainService();
    losePage();
    quit();
    return {};
}

void Tour::nameWhatIsBlocked()
{
    for (const auto* command : whatIsBlocked)
        tellService(command);
}

void Tour::showWindow()
{
    seeDescription("Brevanta — not blocking");
    seeLine("Blocking: Inactive (24.00 Coins)");
    choose("Open Brevanta");
    seeWindow("the client's window");
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
    seeBalanceOnPage(24);
}

void Tour::turnOnFilter()
{
    m_report.tell("This machine has never had the content filter.");
    changeSystem({ "service", "installed" });
    changeSystem({ "service", "loaded" });
    seeLine("✓ Blocking Service 0.121.0");
    choose("⚠ Install Content Filter…");
    seeLine("⚠ Approve Content Filter in System Settings…");
    constexpr auto explanation = "Approve the Brevanta content filter";
    const auto& windows = m_desktop->windows();
    m_report.sees(windows.awaitTitled(explanation, 1, patience), "an alert that says what has to be allowed");
    takePicture("filter-approval");
    m_report.tell("The user allows it.");
    changeSystem({ "filter", "approve" });
    seeComponentsOn();
    m_report.sees(windows.awaitTitled(explanation, 0, patience), "the alert has gone by itself");
    takePictureOfWindow("shell-usable");
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

void Tour::closeWindow()
{
    m_report.tell("The window is closed.");
    const auto& windows = m_desktop->windows();
    for (const auto& window : windows.titled(BrevantaClient::windowTitle))
        m_bench.display().pressCloseButton(window.window);
    m_report.sees(windows.awaitTitled(BrevantaClient::windowTitle, 0, patience), "no window any more");
}

void Tour::startAgain()
{
    m_report.tell("The client is started a second time.");
    const auto second = m_bench.client().startProcess({});
    m_report.sees(second && (*second)->awaitExit(patience) == 0, "the second start ends at once");
    seeWindow("the first one's window again");
}

void Tour::workOnTask()
{
    m_report.tell("A task is begun.");
    tellService("task Write the report 0");
    seeLine("Active: Write the report");
    seeComponentsOn();
    showMenu("task");
}

void Tour::beReminded()
{
    m_report.tell("The service queues a reminder, a timer and a refused application, and repeats them in each reply.");
    tellService(R"(queue reminder {"event_id":1,"task_id":"t","kind":"fire","title":"Read","notification_title":)"
                R"("Read 20 pages","body":"\"Emma\" & a cup of tea"})");
    tellService(R"(queue alert {"alert_id":2,"kind":"task_timer","notification_title":"Time is up","body":)"
                R"("Write the report","sound_prefix":"task-timer","expires_in_seconds":60,"open":null})");
    tellService(R"(queue rejection {"event_id":3,"task_id":"t","task_title":"Games","closing_session_id":null,)"
                R"("reason":"daily_cap","kind":"rejected_open"})");
    seeNotification("intraday-1", "Read 20 pages");
    seeNotification("task-timer-2", "Time is up");
    seeNotification("app-rejected-3", "App not opened");
    seeNotices(3);
    const auto notices = m_desktop->windows().ofKind(WindowKind::notice);
    seePicture(m_scene->takePictureOf(notices, "notices"), "the notices", "notices");
    m_report.sees(m_bench.service().awaitHandledPolls(2), "two more polls bring the same three");
    seeNotices(0);
}

void Tour::runLow()
{
    m_report.tell("Coins are spent down to 8; the low mark is 10.");
    tellService("task none");
    tellService("energy 8");
    seeNotification("low-lp", "Low Coins");
    seeLine("Blocking: Inactive (8.00 Coins)");
    seeBalanceOnPage(8);
    seeNotices(1);
    takePicture("low-coins");
}

void Tour::runOut()
{
    m_report.tell("The last coin is spent, and the service blocks.");
    tellService("energy 0");
    seeNotification("no-lp", "No Coins");
    seeDescription("Brevanta — blocking");
    seeLine("Blocking: Active (0.00 Coins)");
    seeBalanceOnPage(0);
    seeComponentsOn();
    seeNotices(2);
    showMenu("bench");
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
    showMenu("service-away");
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
    nameWhatIsBlocked();
    tellService("energy 45");
    tellService("set high_lp_threshold 40");
    seeDescription("Brevanta — not blocking");
    seeLine("Blocking: Inactive (45.00 Coins)");
    seeNotification("high-lp", "Coins Restored");
    m_report.sees(m_notifications->count() == 6, "six notifications in all, none of them twice");
    seeBalanceOnPage(45);
    seeComponentsOn();
    showMenu("coins-restored");
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

void Tour::seeWindow(const std::string& what)
{
    const auto& windows = m_desktop->windows();
    m_report.sees(windows.awaitTitled(BrevantaClient::windowTitle, 1, patience), what);
    for (const auto& window : windows.titled(BrevantaClient::windowTitle)) {
        m_bench.display().moveWindow(window.window, windowLeft, windowTop);
        m_report.sees(m_scene->activate(window), "the window takes the keyboard");
    }
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

void Tour::seeBalanceOnPage(int coins)
{
    seePage("window.demo.events.some((e) => e.name === 'kestrelune_blocking_status' && e.detail.energy === "
            + std::to_string(coins) + ")",
        "the page hears of " + std::to_string(coins) + " coins");
}

void Tour::seeComponentsOn()
{
    seeLine("✓ Content Filter");
    seeLine("✓ Blocking Service 0.121.0");
}

void Tour::seeNotices(std::size_t count)
{
    m_report.sees(m_desktop->windows().awaitKind(WindowKind::notice, count, patience),
        count ? std::to_string(count) + (count == 1 ? " notice" : " notices") + " on the screen"
              : "the notices have gone");
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

void Tour::takePicture(const std::string& name) { seePicture(m_scene->takePicture(name), "the screen", name); }

void Tour::takePictureOfWindow(const std::string& name)
{
    const auto windows = m_desktop->windows().titled(BrevantaClient::windowTitle);
    seePicture(m_scene->takePictureOf(windows, name), "the window", name);
}

void Tour::seePicture(const std::expected<void, std::string>& taken, const std::string& what, const std::string& name)
{
    m_report.sees(taken.has_value(), what + " (picture " + name + ".png)" + (taken ? "" : ": " + taken.error()));
}

}
