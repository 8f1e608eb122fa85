#pragma once

#include <unistd.h>
#include <utility>

namespace brevanta {

// Owns one file descriptor and closes it: close(2). Errors of the closing are not seen; who needs them releases the
// descriptor and closes it by hand.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor)
        : m_descriptor(descriptor)
    {
    }
    FileDescriptor(FileDescriptor&& other) noexcept
        : m_descriptor(other.release())
    {
    }
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        reset(other.release());
        return *this;
    }
    ~FileDescriptor() { reset(); }

    [[nodiscard]] int get() const { return m_descriptor; }
    [[nodiscard]] explicit operator bool() const { return m_descriptor >= 0; }

    // The caller closes what it gets; a negative number when nothing is owned.
    [[nodiscard]] int release() { return std::exchange(m_descriptor, none); }

    void reset(int descriptor = none)
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
        m_descriptor = descriptor;
    }

private:
    static constexpr int none = -1;

    int m_descriptor { none };
};

}
