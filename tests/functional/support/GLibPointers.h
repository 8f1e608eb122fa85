#pragma once

#include <gio/gio.h>
#include <memory>
#include <string>

namespace brevanta::functional {

struct GLibDeleter {
    void operator()(GObject* object) const { g_object_unref(object); }
    void operator()(GDBusConnection* connection) const { g_object_unref(connection); }
    void operator()(GVariant* value) const { g_variant_unref(value); }
    void operator()(GDBusNodeInfo* info) const { g_dbus_node_info_unref(info); }
    void operator()(GSource* source) const { g_source_unref(source); }
    void operator()(GError* error) const { g_error_free(error); }
    void operator()(char* text) const { g_free(text); }
    void operator()(char** texts) const { g_strfreev(texts); }
};

template <typename T> using GLibPointer = std::unique_ptr<T, GLibDeleter>;

// Several flags of one of GLib's C enumerations, whose union is no enumerator of its own.
template <typename Flags, typename... More> [[nodiscard]] constexpr Flags combined(Flags first, More... more)
{
    return static_cast<Flags>((first | ... | more)); // NOLINT(clang-analyzer-optin.core.EnumCastOutOfRange)
}

// Collects the error of one GLib call.
class ErrorSlot {
public:
    ErrorSlot() = default;
    ~ErrorSlot() { g_clear_error(&m_error); }
    ErrorSlot(const ErrorSlot&) = delete;
    ErrorSlot& operator=(const ErrorSlot&) = delete;

    [[nodiscard]] GError** address() { return &m_error; }
    [[nodiscard]] std::string message() const { return m_error ? m_error->message : "unknown error"; }

private:
    GError* m_error { nullptr };
};

}
