#include "gtk/GLibText.h"

#include "gtk/GObjectPtr.h"

namespace brevanta {

std::string validUtf8(std::string_view text)
{
    const GLibPtr<char> valid(g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())));
    return valid.get();
}

std::string withoutMnemonics(std::string_view text)
{
    std::string label;
    for (const char c : validUtf8(text))
        label.append(c == '_' ? 2 : 1, c);
    return label;
}

}
