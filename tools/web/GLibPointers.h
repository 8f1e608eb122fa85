#pragma once

#include <gio/gio.h>
#include <libsoup/soup.h>
#include <memory>
#include <string>

namespace brevanta::web {

struct GLibDeleter {
    template <typename Object> void operator()(Object* object) const { g_object_unref(object); }
    void operator()(GError* error) const { g_error_free(error); }
    void operator()(GBytes* bytes) const { g_bytes_unref(bytes); }
    void operator()(GSource* source) const { g_source_unref(source); }
    void operator()(GMainLoop* loop) const { g_main_loop_unref(loop); }
    void operator()(char* text) const { g_free(text); }
};

template <typename T> using GLibPointer = std::unique_ptr<T, GLibDeleter>;

// Shares an object that somebody else owns too.
template <typename T> [[nodiscard]] GLibPointer<T> shared(T* object)
{
    return GLibPointer<T>(static_cast<T*>(g_object_ref(object)));
}

// Collects the error of one GLib call.
class ErrorSlot {
public:
    ErrorSlot() = default;
    ~ErrorSlot() { g_clear_error(&m_error); }
    ErrorSlot(const ErrorSlot&) = delete;
    ErrorSlot& operator=(const ErrorSlot&) = delete;

    [[nodiscard]] GError** address() { return &m_error; }
    [[nodiscard]] const GError* get() const { return m_error; }
    [[nodiscard]] std::string message() const { return m_error ? m_error->message : "unknown error"; }

private:
    GError* m_error { nullptr };
};

}
