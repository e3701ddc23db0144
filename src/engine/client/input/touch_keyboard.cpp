#include "engine/client/input/touch_keyboard.h"

#include "layers/deck/on_screen_keyboard.h"
#include "render/display_scale.h"

namespace ZEMO::UI {
namespace {

/// Device pixels of the screen.
POINT touchOnScreen(HWND window, const CefTouchEvent& touch, float scale) {
    POINT point{logicalToDevice(truncateToInt(touch.x), scale), logicalToDevice(truncateToInt(touch.y), scale)};
    ClientToScreen(window, &point);
    return point;
}

ScreenMetrics screenMetrics(float scale) {
    const int width = GetSystemMetrics(SM_CXSCREEN);
    const int height = GetSystemMetrics(SM_CYSCREEN);
    return {static_cast<uint32_t>(deviceToLogical(width, scale)), static_cast<uint32_t>(deviceToLogical(height, scale)),
            static_cast<uint32_t>(width), static_cast<uint32_t>(height)};
}

}  // namespace

void followTouchWithKeyboard(HWND window, const CefTouchEvent& lastTouch, CefRenderHandler::TextInputMode mode) {
    if (lastTouch.id == 0) return;
    if (mode == CEF_TEXT_INPUT_MODE_NONE) return hideOnScreenKeyboard();
    const float scale = getWindowScale(window);  // the window may be on another monitor than at its creation
    const POINT touch = touchOnScreen(window, lastTouch, scale);
    placeOnScreenKeyboard(keyboardBelongsAtBottom(GetSystemMetrics(SM_CYSCREEN), touch.y), screenMetrics(scale));
}

}  // namespace ZEMO::UI
