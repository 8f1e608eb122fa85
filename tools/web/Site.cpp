#include "web/Site.h"

#include "web/GLibPointers.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <string_view>
#include <system_error>
#include <utility>

namespace brevanta::web {

static constexpr std::string_view pagesPrefix = "/pages/";

static std::string contentTypeOf(const std::filesystem::path& path)
{
    static constexpr std::pair<std::string_view, const char*> types[] = {
        { ".html", "text/html; charset=utf-8" },
        { ".css", "text/css; charset=utf-8" },
        { ".js", "text/javascript; charset=utf-8" },
        { ".json", "application/json" },
        { ".svg", "image/svg+xml" },
        { ".png", "image/png" },
        { ".txt", "text/plain; charset=utf-8" },
    };
    const auto extension = path.extension().string();
    const auto* found = std::ranges::find(types, extension, &std::pair<std::string_view, const char*>::first);
    return found == std::end(types) ? "application/octet-stream" : found->second;
}

static std::optional<std::string> contentsOf(const std::filesystem::path& path)
{
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error))
        return std::nullopt;
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(file), {});
}

static bool isBelow(const std::filesystem::path& path, const std::filesystem::path& directory)
{
    const auto [inPath, inDirectory] = std::ranges::mismatch(path, directory);
    return inDirectory == directory.end();
}

// A file beside the pages which they may name; the driver's script is there for the driver alone.
static bool isPartOfPages(const std::string& path)
{
    static constexpr std::array<std::string_view, 3> endings { ".css", ".js", ".svg" };
    return path.starts_with('/') && path.find('/', 1) == std::string::npos && path != "/driver.js"
        && std::ranges::find(endings, std::filesystem::path(path).extension().string()) != endings.end();
}

Site::Site(std::filesystem::path application, std::filesystem::path pages, Scripts scripts)
    : m_application(std::move(application))
    , m_pages(std::move(pages))
    , m_scripts(scripts)
{
}

std::optional<SiteFile> Site::find(const std::string& escapedPath) const
{
    static constexpr std::pair<std::string_view, const char*> routes[] = {
        { "/", "index.html" },
        { "/sign-in", "sign-in.html" },
    };
    // An escaped slash or zero would hide from what looks at the path's segments.
    const GLibPointer<char> unescaped(g_uri_unescape_string(escapedPath.c_str(), "/"));
    if (!unescaped)
        return std::nullopt;
    const std::string path(unescaped.get());
    if (path.starts_with(pagesPrefix))
        return findPage(path.substr(pagesPrefix.size()));
    const auto* found = std::ranges::find(routes, path, &std::pair<std::string_view, const char*>::first);
    if (found != std::end(routes))
        return applicationFile(found->second);
    return isPartOfPages(path) ? applicationFile(path.substr(1)) : std::nullopt;
}

std::optional<SiteFile> Site::findPage(const std::string& name) const
{
    if (m_pages.empty())
        return std::nullopt;
    std::error_code error;
    const auto directory = std::filesystem::canonical(m_pages, error);
    if (error)
        return std::nullopt;
    const std::filesystem::path relative(name);
    if (relative.is_absolute() || std::ranges::find(relative, "..") != relative.end())
        return std::nullopt;
    const auto path = std::filesystem::canonical(directory / relative, error);
    if (error || !isBelow(path, directory))
        return std::nullopt;
    auto body = contentsOf(path);
    if (!body)
        return std::nullopt;
    return SiteFile { .contentType = contentTypeOf(path), .body = std::move(*body), .isPartOfApplication = false };
}

std::optional<SiteFile> Site::applicationFile(const std::string& name) const
{
    static constexpr std::string_view endOfHead = "</head>";
    const auto path = m_application / name;
    auto body = contentsOf(path);
    if (!body)
        return std::nullopt;
    if (path.extension() == ".html") {
        std::string scripts
            = m_scripts.day && name == "index.html" ? "<script src=\"/day.js\" type=\"module\"></script>\n" : "";
        scripts += m_scripts.driver ? "<script src=\"/driver.js\" defer></script>\n" : "";
        if (const auto position = body->find(endOfHead); position != std::string::npos)
            body->insert(position, scripts);
    }
    return SiteFile { .contentType = contentTypeOf(path), .body = std::move(*body), .isPartOfApplication = true };
}

std::optional<SiteFile> Site::driverScript() const { return applicationFile("driver.js"); }

}
