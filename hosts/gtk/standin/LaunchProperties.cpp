#include "gtk/standin/LaunchProperties.h"

#include "gtk/standin/MarkupReading.h"
#include "posix/FileDescriptor.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace brevanta {

namespace {

constexpr std::size_t mostBytes = std::size_t { 1 } << 20;

// The elements that are open, from plist and its dict inwards: in the dict keys and values take turns.
class Reader {
public:
    bool start(std::string_view element)
    {
        m_open.emplace_back(element);
        m_text.clear();
        if (m_open.size() == plistDepth)
            return element == "plist";
        return m_open.size() != dictionaryDepth || element == "dict";
    }

    bool end(std::string_view /*element*/)
    {
        const auto element = std::move(m_open.back());
        m_open.pop_back();
        if (m_open.size() == dictionaryDepth)
            return endEntry(element);
        if (m_open.size() != entryDepth || m_key != "ProgramArguments")
            return true;
        m_properties.programArguments.push_back(std::move(m_text));
        return element == "string" && m_open.back() == "array";
    }

    void add(std::string_view text) { m_text += text; }

    [[nodiscard]] const LaunchProperties& properties() const { return m_properties; }

private:
    static constexpr std::size_t plistDepth = 1;
    static constexpr std::size_t dictionaryDepth = 2;
    static constexpr std::size_t entryDepth = 3;

    bool endEntry(std::string_view element)
    {
        if (element == "key") {
            m_key = std::move(m_text);
            return true;
        }
        if (m_key == "Label")
            m_properties.label = std::move(m_text);
        return true;
    }

    std::vector<std::string> m_open;
    std::string m_key; // Of the entry that is being read.
    std::string m_text; // Since the last element began.
    LaunchProperties m_properties;
};

}

std::expected<LaunchProperties, int> parseLaunchProperties(std::string_view xml)
{
    Reader reader;
    const auto& properties = reader.properties();
    if (!readMarkup(xml, reader) || properties.label.empty() || properties.programArguments.empty())
        return std::unexpected(EINVAL);
    return properties;
}

std::expected<LaunchProperties, int> readLaunchProperties(const std::filesystem::path& file)
{
    // Opening a named pipe would wait for its other end.
    const FileDescriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!descriptor || ::fstat(descriptor.get(), &status))
        return std::unexpected(errno);
    if (!S_ISREG(status.st_mode))
        return std::unexpected(EINVAL);
    std::string text;
    std::array<char, 4096> piece {};
    while (text.size() <= mostBytes) {
        const auto count = ::read(descriptor.get(), piece.data(), piece.size());
        if (count == 0)
            return parseLaunchProperties(text);
        if (count < 0 && errno != EINTR)
            return std::unexpected(errno);
        if (count > 0)
            text.append(piece.data(), static_cast<std::size_t>(count));
    }
    return std::unexpected(EFBIG);
}

}
