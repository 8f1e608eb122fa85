#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace brevanta::web {

struct SiteFile {
    std::string contentType;
    std::string body;
    // What belongs to the application is served under its strict policy; a test's page makes its own.
    bool isPartOfApplication;
};

// Finds the file for a request. Files are read anew each time, so that a page can be worked on while it is shown.
class Site {
public:
    // What the pages are given besides their own scripts.
    struct Scripts {
        bool driver = false; // Takes the driver's orders.
        bool day = false; // Asks the back end.
    };

    // The application's own files, and a directory (or an empty path) whose files are served below /pages/.
    Site(std::filesystem::path application, std::filesystem::path pages, Scripts);

    // The path as it stands in the request, still escaped. Nothing for what there is not, or for a path that leads out
    // of the directory, be it by dots, by escapes or by a symbolic link.
    [[nodiscard]] std::optional<SiteFile> find(const std::string& escapedPath) const;

    // The script that takes the driver's orders.
    [[nodiscard]] std::optional<SiteFile> driverScript() const;

private:
    [[nodiscard]] std::optional<SiteFile> findPage(const std::string& name) const;
    [[nodiscard]] std::optional<SiteFile> applicationFile(const std::string& name) const;

    std::filesystem::path m_application;
    std::filesystem::path m_pages;
    Scripts m_scripts;
};

}
