#pragma once

#include "support/Await.h"

#include <fstream>
#include <string>
#include <string_view>

namespace brevanta::functional {

// Everything that comes out of a descriptor, kept in memory and, if asked for, in a file.
class CapturedStream {
public:
    CapturedStream() = default;
    ~CapturedStream();
    CapturedStream(const CapturedStream&) = delete;
    CapturedStream& operator=(const CapturedStream&) = delete;

    // Takes the descriptor over. An empty path names no file; an existing file is continued.
    void capture(int descriptor, const std::string& filePath = {});

    [[nodiscard]] const std::string& text() const { return m_text; }
    [[nodiscard]] bool contains(std::string_view part) const { return m_text.find(part) != std::string::npos; }
    [[nodiscard]] bool awaitText(std::string_view part, Milliseconds within) const;
    // Reads what is there already without waiting for more.
    void drain();

private:
    bool readOnce();
    static int descriptorIsReadable(int descriptor, int condition, void* stream);

    int m_descriptor { -1 };
    std::string m_text;
    std::ofstream m_file;
    SourceGuard m_source;
};

}
