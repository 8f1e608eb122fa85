#pragma once

#include "support/ClientBench.h"
#include "tour/Desktop.h"
#include "tour/NotificationMonitor.h"
#include "tour/Scene.h"
#include "tour/TourReport.h"

namespace brevanta::tour {

// Plays an afternoon with the client in half a minute and looks at what a user would see of it.
class Tour {
public:
    Tour(std::string outputDirectory, TourReport&);

    // An error when something around the client could not be started.
    [[nodiscard]] std::expected<void, std::string> play();

private:
    void loadPage();
    void signIn();
    void turnOnFilter();
    void losePage();
    void showWindow();
    void closeWindow();
    void startAgain();
    void workOnTask();
    void runLow();
    void beReminded();
    void runOut();
    void loseService();
    void regainService();
    void quit();

    void nameWhatIsBlocked();
    // Puts the window where nothing else covers it, and gives it the keyboard.
    void seeWindow(const std::string& what);
    void tellService(const std::string& command);
    void seeDescription(const std::string& text);
    void seeLine(const std::string& label);
    void seeNotification(const std::string& identifier, const std::string& title);
    // A picture of the screen with the status item's menu open, and the menu as text.
    void showMenu(const std::string& pictureName);
    void takePicture(const std::string& name);
    void takePictureOfWindow(const std::string& name);
    void seePicture(const std::expected<void, std::string>& taken, const std::string& what, const std::string& name);
    void seeBalanceOnPage(int coins);
    void seeComponentsOn();
    void seeNotices(std::size_t count);
    void changeSystem(const std::vector<std::string>& command);
    void tellWeb(const std::string& command);
    void seeLog(const std::string& text, const std::string& what);
    void seePage(const std::string& expression, const std::string& what);
    void choose(const std::string& label);

    TourReport& m_report;
    std::string m_outputDirectory;
    functional::ClientBench m_bench;
    std::unique_ptr<Desktop> m_desktop;
    std::unique_ptr<NotificationMonitor> m_notifications;
    std::unique_ptr<Scene> m_scene;
};

}
