#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

namespace brevanta {

// Root may do everything, so a test that root runs is somebody else meanwhile: all threads are.
class NotRoot {
public:
    static constexpr uid_t nobody = 65534;

    NotRoot() { EXPECT_EQ(m_wasRoot ? ::seteuid(nobody) : 0, 0); }
    ~NotRoot() { EXPECT_EQ(m_wasRoot ? ::seteuid(0) : 0, 0); }
    NotRoot(const NotRoot&) = delete;
    NotRoot& operator=(const NotRoot&) = delete;

private:
    bool m_wasRoot { ::geteuid() == 0 };
};

}
