#include "gtk/PropertyListGtk.h"

#include "posix/FileStorePosix.h"

#include <glib.h>
#include <memory>
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

void refuseUnless(bool isWellFormed, GError** error)
{
    if (!isWellFormed)
        g_set_error_literal(error, G_MARKUP_ERROR, G_MARKUP_ERROR_INVALID_CONTENT, "no property list");
}

const GMarkupParser handlers {
    .start_element = [](GMarkupParseContext*, const char* element, const char**, const char**, gpointer reader,
                         GError** error) { refuseUnless(static_cast<Reader*>(reader)->start(element), error); },
    .end_element = [](GMarkupParseContext*, const char* element, gpointer reader,
                       GError** error) { refuseUnless(static_cast<Reader*>(reader)->end(element), error); },
    .text = [](GMarkupParseContext*, const char* text, gsize size, gpointer reader,
                GError**) { static_cast<Reader*>(reader)->add({ text, size }); },
    .passthrough = nullptr,
    .error = nullptr,
};

struct ContextDeleter {
    void operator()(GMarkupParseContext* context) const { g_markup_parse_context_free(context); }
};

}

std::optional<PropertyListTexts> parsePropertyList(std::string_view xml)
{
    if (xml.size() > mostBytes)
        return std::nullopt;
    Reader reader;
    const std::unique_ptr<GMarkupParseContext, ContextDeleter> context(
        g_markup_parse_context_new(&handlers, G_MARKUP_TREAT_CDATA_AS_TEXT, &reader, nullptr));
    if (!g_markup_parse_context_parse(context.get(), xml.data(), static_cast<gssize>(xml.size()), nullptr)
        || !g_markup_parse_context_end_parse(context.get(), nullptr))
        return std::nullopt;
    return reader.result();
}

std::optional<PropertyListTexts> readPropertyList(const std::filesystem::path& file)
{
    const auto contents = FileStorePosix().read(file);
    return contents ? parsePropertyList(*contents) : std::nullopt;
}

}
