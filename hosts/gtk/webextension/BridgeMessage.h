#pragma once

#include <cstddef>

// What the application's process and the web process agree on; both are built at once and from this. The types are
// those of GVariant's format strings.
namespace brevanta::bridge {

// For the extension at its start: each handler's name, and whether it replies.
inline constexpr auto handlersType = "a(sb)";

// From the extension to the view: handler, whether the frame is the main one, its security origin as self.origin has
// it, and the body as JSON.
inline constexpr auto messageName = "brevanta-script-message";
inline constexpr auto messageType = "(sbss)";

// The answer: a JSON value, or nothing for undefined.
inline constexpr auto replyName = "brevanta-script-reply";
inline constexpr auto replyType = "ms";

// Longer bodies are dropped in the web process already.
inline constexpr std::size_t largestBody = std::size_t { 1024 } * 1024; // Bytes.

}
