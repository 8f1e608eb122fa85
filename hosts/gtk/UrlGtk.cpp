#include "gtk/UrlGtk.h"

#include "gtk/GObjectPtr.h"

namespace brevanta {

namespace {

constexpr int noPort = -1;

std::optional<std::string> optionalText(char* owned)
{
    const GLibPtr<char> text(owned);
    return text ? std::optional<std::string>(text.get()) : std::nullopt;
}

}

std::optional<Url> parseUrl(const std::string& text)
{
    if (text.contains('\0'))
        return std::nullopt;
    char* scheme = nullptr;
    char* user = nullptr;
    char* password = nullptr;
    char* host = nullptr;
    char* path = nullptr;
    int port = noPort;
    if (!g_uri_split_with_user(text.c_str(), G_URI_FLAGS_HAS_PASSWORD, &scheme, &user, &password, nullptr, &host, &port,
            &path, nullptr, nullptr, nullptr))
        return std::nullopt;
    Url url { .text = text,
        .scheme = optionalText(scheme).value_or(""),
        .user = optionalText(user),
        .password = optionalText(password),
        .host = optionalText(host).value_or(""),
        .port = port == noPort ? std::nullopt : std::optional(port),
        .path = optionalText(path).value_or("") };
    return url.scheme.empty() ? std::nullopt : std::optional(std::move(url));
}

}
