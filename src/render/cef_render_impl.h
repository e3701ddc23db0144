#pragma once

#include <cstdint>

#include "core/geometry.h"
#include "include/cef_render_handler.h"

namespace ZEMO::UI {

using PaintElementType = CefRenderHandler::PaintElementType;
using RectList = CefRenderHandler::RectList;

/// The strategy that takes a layer's frames: a callback of the game, or the graphics hook. paint and the popup calls
/// come on the engine thread, tick and needsRepaint on the view's render thread.
class CefRenderImpl {
public:
    virtual ~CefRenderImpl() = default;
    /// Once in each cycle of the render thread.
    virtual void tick(uint32_t openGlSleepTime) = 0;
    /// This consumer really takes frames.
    virtual bool isActive() = 0;
    /// The page should be refreshed in this cycle.
    virtual bool needsRepaint() = 0;
    /// The last view on the game's window went away.
    virtual void onViewClosed() = 0;
    /// Drop what has been shown.
    virtual void clearFrame() = 0;
    /// One frame, valid during the call. True means that the frame is dealt with.
    virtual bool paint(bool drawCloseButton, CefRefPtr<CefBrowser> browser, PaintElementType type,
                       const RectList& dirtyRects, const void* buffer, int width, int height) = 0;
    virtual void onResized() = 0;
    /// The view is about to be shown, maybe again: another one may have drawn over its picture meanwhile.
    virtual void onShow() {}
    virtual void onPopupShow(bool show) = 0;
    /// Device pixels.
    virtual void onPopupRect(const Rect16& ltrb) = 0;
};

}  // namespace ZEMO::UI
