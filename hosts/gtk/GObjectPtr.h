#pragma once

#include <gio/gio.h>
#include <memory>

namespace brevanta {

struct GObjectDeleter {
    template <typename T> void operator()(T* object) const { g_object_unref(object); }
};

// Owns one reference to a GObject.
template <typename T> using GObjectPtr = std::unique_ptr<T, GObjectDeleter>;

// Takes a further reference to an object that is owned elsewhere.
template <typename T> [[nodiscard]] GObjectPtr<T> share(T* object)
{
    return GObjectPtr<T>(static_cast<T*>(g_object_ref(object)));
}

struct GLibDeleter {
    void operator()(GError* error) const { g_error_free(error); }
    void operator()(GVariant* value) const { g_variant_unref(value); }
    void operator()(char* text) const { g_free(text); }
    void operator()(const char** texts) const { g_free(texts); }
};

// Owns a value of GLib that is no GObject.
template <typename T> using GLibPtr = std::unique_ptr<T, GLibDeleter>;

}
