#pragma once

#include "web/BridgeMessage.h"

#include <functional>
#include <string>
#include <vector>

namespace brevanta {

// The requests that the page may make, each with what answers it, in the order in which a message is compared with
// them.
class BridgeTable {
public:
    using Handler = std::function<void(const BridgeMessage&)>;

    void add(std::string type, Handler handler)
    {
        m_entries.push_back(
            { [type = std::move(type)](const std::string& asked) { return asked == type; }, std::move(handler) });
    }

    // For requests whose names another part of the client knows.
    void addMatching(std::function<bool(const std::string& type)> matches, Handler handler)
    {
        m_entries.push_back({ std::move(matches), std::move(handler) });
    }

    // Hands the message to the first entry that matches its type; one that matches none is ignored.
    void dispatch(const BridgeMessage& message) const
    {
        for (const auto& [matches, handle] : m_entries) {
            if (matches(message.type))
                return handle(message);
        }
    }

private:
    struct Entry {
        std::function<bool(const std::string&)> matches;
        Handler handle;
    };

    std::vector<Entry> m_entries;
};

}
