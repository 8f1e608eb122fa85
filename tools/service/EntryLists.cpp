#include "service/EntryLists.h"

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <cstdio>

namespace brevanta::service {

static constexpr std::size_t defaultCount = 10;

enum class EntryKind { domain, app, address, prefix };

struct ListShape {
    EntryKind kind;
    const char* stem;
};

// In the order of EntryLists::keys. The stems keep the lists apart from one another.
static constexpr std::array<ListShape, EntryLists::keys.size()> shapes { {
    { EntryKind::domain, "site" },
    { EntryKind::address, "" },
    { EntryKind::app, "blocked" },
    { EntryKind::domain, "work" },
    { EntryKind::app, "work" },
    { EntryKind::prefix, "" },
    { EntryKind::domain, "video" },
} };

static std::string entryAt(const ListShape& shape, std::uint32_t index)
{
    const auto first = index >> 16 & 0xff;
    const auto second = index >> 8 & 0xff;
    const auto third = index & 0xff;
    std::array<char, 64> text {};
    switch (shape.kind) {
    case EntryKind::domain:
        std::snprintf(text.data(), text.size(), "%s-%06u.example.com", shape.stem, index);
        break;
    case EntryKind::app:
        std::snprintf(text.data(), text.size(), "com.example.%s.app%06u", shape.stem, index);
        break;
    case EntryKind::address:
        if (index % 8 == 7)
            std::snprintf(text.data(), text.size(), "2001:db8::%x:%x", first + 1, index & 0xffff);
        else
            std::snprintf(text.data(), text.size(), "10.%u.%u.%u", first, second, third);
        break;
    case EntryKind::prefix:
        // There are only 65,536 such IPv4 networks, so a longer list goes on with IPv6 ones.
        if (first)
            std::snprintf(text.data(), text.size(), "2001:db8:%x:%x::/64", first, index & 0xffff);
        else
            std::snprintf(text.data(), text.size(), "10.%u.%u.0/24", second, third);
        break;
    }
    return text.data();
}

static std::string makeText(const ListShape& shape, std::size_t count)
{
    std::string text = "[";
    text.reserve(2 + count * 32);
    for (std::uint32_t index = 0; index < count; ++index) {
        if (index)
            text += ',';
        text += '"';
        text += entryAt(shape, index);
        text += '"';
    }
    text += ']';
    return text;
}

static std::size_t indexOf(std::string_view key)
{
    const auto found = std::ranges::find(EntryLists::keys, key);
    assert(found != EntryLists::keys.end());
    return static_cast<std::size_t>(found - EntryLists::keys.begin());
}

EntryLists::EntryLists()
{
    for (const auto key : keys)
        setCount(key, defaultCount);
}

bool EntryLists::isListKey(std::string_view key) { return std::ranges::find(keys, key) != keys.end(); }

void EntryLists::setCount(std::string_view key, std::size_t count)
{
    const auto index = indexOf(key);
    m_texts[index] = makeText(shapes[index], std::min(count, maximumCount));
}

const std::string& EntryLists::textOf(std::string_view key) const { return m_texts[indexOf(key)]; }

}
