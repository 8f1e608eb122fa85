#pragma once

#include <glib.h>
#include <memory>
#include <string_view>

namespace brevanta {

// Leads a reader through XML by GLib's simple parser (documentation page GMarkupParser): `start(element)` and
// `end(element)` say whether the element may stand there, `add(text)` gets the text between. False for what is no XML,
// and for what the reader refused.
template <typename Reader> [[nodiscard]] bool readMarkup(std::string_view xml, Reader& reader)
{
    static constexpr auto refuseUnless = [](bool isWellFormed, GError** error) {
        if (!isWellFormed)
            g_set_error_literal(error, G_MARKUP_ERROR, G_MARKUP_ERROR_INVALID_CONTENT, "an element in a wrong place");
    };
    static const GMarkupParser handlers {
        .start_element = [](GMarkupParseContext*, const char* element, const char**, const char**, gpointer data,
                             GError** error) { refuseUnless(static_cast<Reader*>(data)->start(element), error); },
        .end_element = [](GMarkupParseContext*, const char* element, gpointer data,
                           GError** error) { refuseUnless(static_cast<Reader*>(data)->end(element), error); },
        .text = [](GMarkupParseContext*, const char* text, gsize size, gpointer data,
                    GError**) { static_cast<Reader*>(data)->add({ text, size }); },
        .passthrough = nullptr,
        .error = nullptr,
    };
    const std::unique_ptr<GMarkupParseContext, decltype(&g_markup_parse_context_free)> context(
        g_markup_parse_context_new(&handlers, G_MARKUP_TREAT_CDATA_AS_TEXT, &reader, nullptr),
        &g_markup_parse_context_free);
    return g_markup_parse_context_parse(context.get(), xml.data(), static_cast<gssize>(xml.size()), nullptr)
        && g_markup_parse_context_end_parse(context.get(), nullptr);
}

}
