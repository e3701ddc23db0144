#pragma once

#include <cstdint>

#include "core/geometry.h"

// How the Steam Deck variant of a view's window is divided, and which of the view's messages go where. No system call:
// any thread.
namespace ZEMO::UI {

/// Width and height of the close button, and height of the strip that holds it, in device pixels.
inline constexpr int32_t kExtraButtonSizePx = 45;

/// Places in a client area of this size, in device pixels: the button in the lower right corner, the view over
/// everything above the button's strip. A client area smaller than the button puts its origin left of or above 0.
Rect extraButtonPlace(int32_t width, int32_t height);
Rect extraViewPlace(int32_t width, int32_t height);

enum class ViewMessageRoute {
    ToParent,  ///< posted on to the parent window, which is the one that knows the layer
    Swallowed,
    Default,
};
ViewMessageRoute extraViewMessageRoute(uint32_t message);

}  // namespace ZEMO::UI
