#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>

namespace brevanta {

// A growing buffer of bytes that keeps its memory when it is emptied, and always has the spare bytes behind its
// content that simdjson reads past the end. Not thread-safe.
class PaddedBuffer {
public:
    void clear() { m_size = 0; }

    // Room for `count` more bytes behind the content. Valid until the next call; becomes content by `commit`.
    [[nodiscard]] std::span<char> writableTail(std::size_t count);

    // Takes the first `count` bytes of the last tail into the content.
    void commit(std::size_t count) { m_size += count; }

    void assign(std::string_view content);

    [[nodiscard]] std::string_view view() const { return { m_bytes.get(), m_size }; }
    [[nodiscard]] std::size_t capacity() const { return m_capacity; }

private:
    std::unique_ptr<char[]> m_bytes;
    std::size_t m_size { 0 };
    std::size_t m_capacity { 0 }; // Without the padding.
};

}
