#include "gtk/PropertyListGtk.h"

#include "gtk/standin/MarkupReading.h"
#include "posix/FileStorePosix.h"

#include <utility>

namespace brevanta {

namespace {

constexpr auto mostBytes = FileStore::largestRead;

// What the parser has seen. Elements are counted by their depth: plist, its dict, and the keys and values in that.
class Reader {
public:
    bool start(std::string_view element)
    {
        ++m_depth;
        if (m_depth == plistDepth)
            return element == "plist";
        if (m_depth == dictionaryDepth)
            return element == "dict" && !std::exchange(m_hasDictionary, true);
        if (m_depth == entryDepth) {
            m_text.clear();
            m_isText = element == "key" || element == "string";
            // Each value follows its key.
            return (element == "key") != m_key.has_value();
        }
        return !m_isText;
    }

    bool end(std::string_view element)
    {
        if (m_depth-- != entryDepth)
            return m_depth != dictionaryDepth - 1 || !m_key;
        if (element == "key") {
            m_key = m_text;
            return true;
        }
        if (element == "string")
            m_texts.try_emplace(std::move(*m_key), m_text);
        m_key.reset();
        return true;
    }

    void add(std::string_view text)
    {
        if (m_depth == entryDepth)
            m_text += text;
    }

    [[nodiscard]] std::optional<PropertyListTexts> result()
    {
        return m_hasDictionary ? std::optional(std::move(m_texts)) : std::nullopt;
    }

private:
    static constexpr int plistDepth = 1;
    static constexpr int dictionaryDepth = 2;
    static constexpr int entryDepth = 3;

    int m_depth { 0 };
    bool m_hasDictionary { false };
    bool m_isText { false }; // Whether the entry is a key or a text, in which no element may stand.
    std::optional<std::string> m_key; // Whose value is to come.
    std::string m_text;
    PropertyListTexts m_texts;
};

}

std::optional<PropertyListTexts> parsePropertyList(std::string_view xml)
{
    if (xml.size() > mostBytes)
        return std::nullopt;
    Reader reader;
    return readMarkup(xml, reader) ? reader.result() : std::nullopt;
}

std::optional<PropertyListTexts> readPropertyList(const std::filesystem::path& file)
{
    const auto contents = FileStorePosix().read(file);
    return contents ? parsePropertyList(*contents) : std::nullopt;
}

}
