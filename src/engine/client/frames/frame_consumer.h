#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>

#include "layers/window_events.h"
#include "render/cef_render_impl.h"
#include "zemo/ui.h"

namespace ZEMO::UI {

/// Who takes the frames of a layer on the game's window: the hook module, or without one the game's present callback
/// (copied), or nobody.
std::unique_ptr<CefRenderImpl> makeFrameConsumer(HMODULE hookModule, uint32_t hookSleepTime,
                                                 OsrFramePresentCallback callback, float dpiScale, bool hasCloseButton);

/// The one place that asks for the window style of a view's frames: on the game's window `consumer` takes them; a
/// window of the view's own is drawn by a local renderer, and `consumer` only goes on hearing of the cycle and of
/// sizes.
std::unique_ptr<CefRenderImpl> consumerForStyle(WindowStyle style, std::unique_ptr<CefRenderImpl> consumer);

}  // namespace ZEMO::UI
