#pragma once

#include <windows.h>

#include <cstdint>

namespace ZEMO::UI {

/// The Steam Deck variant of a view's window, divided by two child windows: the view that shows the page, and below it
/// a strip with a close button that a finger can hit. Sizes in device pixels.
///
/// Made on the thread of `parent`. The child windows belong to that thread and end with `parent`: this object only
/// names them, so it may end on any thread, before them or after.
class ZEMOExtraWindowForSteamdeck {
public:
    /// `width` and `height` of the parent's client area.
    ZEMOExtraWindowForSteamdeck(HWND parent, int width, int height);

    /// What the page is shown in, and what the engine works with; null when it could not be made.
    HWND getViewWindow() { return viewWindow; }

private:
    HWND viewWindow = nullptr;
    int32_t width;
    int32_t height;
};

}  // namespace ZEMO::UI
