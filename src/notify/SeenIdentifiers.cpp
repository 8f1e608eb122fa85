#include "notify/SeenIdentifiers.h"

#include <algorithm>
#include <charconv>

namespace brevanta {

SeenIdentifiers::SeenIdentifiers(const std::optional<DefaultsValue>& stored)
{
    if (const auto* const list = stored ? std::get_if<std::vector<std::int64_t>>(&*stored) : nullptr)
        m_inOrder = *list;
    m_known.insert(m_inOrder.begin(), m_inOrder.end());
}

// The hash is FNV-1a, as in draft-eastlake-fnv.
std::int64_t SeenIdentifiers::number(const std::string& identifier)
{
    std::int64_t integer { 0 };
    const auto* const end = identifier.data() + identifier.size();
    if (std::from_chars(identifier.data(), end, integer).ptr == end && std::to_string(integer) == identifier)
        return integer;
    std::uint64_t hash = 0xcbf29ce484222325U;
    for (const char c : identifier)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3U;
    return static_cast<std::int64_t>(hash);
}

bool SeenIdentifiers::admit(std::int64_t identifier)
{
    const bool isNew = m_known.insert(identifier).second;
    if (isNew)
        m_inOrder.push_back(identifier);
    return isNew;
}

// Only what is stored is cut, so that a notice that a long batch holds twice is still known at its second place.
std::vector<std::int64_t> SeenIdentifiers::newest() const
{
    const auto count = static_cast<std::ptrdiff_t>(std::min(m_inOrder.size(), most));
    return { m_inOrder.end() - count, m_inOrder.end() };
}

}
