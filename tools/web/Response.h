#pragma once

#include <libsoup/soup.h>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

namespace brevanta::web {

// Nothing is kept by a client's cache, so that every load is a request.
void respond(SoupServerMessage*, unsigned status, const char* contentType, std::string_view body);
void respondWithJson(SoupServerMessage*, const nlohmann::json&);
// A short page that names the status.
void respondWithStatus(SoupServerMessage*, unsigned status);

void addHeader(SoupServerMessage*, const char* name, const char* value);

[[nodiscard]] std::string requestBody(SoupServerMessage*);

}
