#pragma once

#include <windows.h>

#include "include/cef_render_handler.h"

namespace ZEMO::UI {

/// The system's on-screen keyboard for a text field that was touched: out of the way of `lastTouch`, or hidden when no
/// field has the focus any more. Nothing happens when the last input was no touch. `window` is the view's. Engine
/// thread.
void followTouchWithKeyboard(HWND window, const CefTouchEvent& lastTouch, CefRenderHandler::TextInputMode mode);

}  // namespace ZEMO::UI
