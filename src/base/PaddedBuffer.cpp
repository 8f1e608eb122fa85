#include "base/PaddedBuffer.h"

#include <algorithm>
#include <cstring>
#include <simdjson.h>

namespace brevanta {

std::span<char> PaddedBuffer::writableTail(std::size_t count)
{
    if (m_capacity - m_size < count) {
        const std::size_t capacity = std::max(m_capacity * 2, m_size + count);
        auto bytes = std::make_unique_for_overwrite<char[]>(capacity + simdjson::SIMDJSON_PADDING);
        if (m_size)
            std::memcpy(bytes.get(), m_bytes.get(), m_size);
        // The padding is read, though it decides nothing; give it a value.
        std::memset(bytes.get() + capacity, 0, simdjson::SIMDJSON_PADDING);
        m_bytes = std::move(bytes);
        m_capacity = capacity;
    }
    return { m_bytes.get() + m_size, count };
}

void PaddedBuffer::assign(std::string_view content)
{
    clear();
    if (!content.empty())
        std::memcpy(writableTail(content.size()).data(), content.data(), content.size());
    commit(content.size());
}

}
