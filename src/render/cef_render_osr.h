#pragma once

#include <atomic>
#include <cstdint>

#include "render/cef_render_impl.h"
#include "render/frame_compositor.h"

namespace ZEMO::UI {

/// Hands finished frames to the game's present callback: the view with popup and close button composed in, and the
/// rectangle that changed. Frames come on the engine thread, and the callback runs there; the render thread asks
/// needsRepaint.
class CefRenderOSR final : public CefRenderImpl {
public:
    /// `scale`: device pixels for each logical pixel; sizes the close button.
    CefRenderOSR(OsrFramePresentCallback framePresentCallback, float scale, bool hasCloseButton);

    void tick(uint32_t /*openGlSleepTime*/) override {}
    bool isActive() override { return hasCallback; }
    bool needsRepaint() override;
    void onViewClosed() override {}
    void clearFrame() override;
    bool paint(bool drawCloseButton, CefRefPtr<CefBrowser> browser, PaintElementType type, const RectList& dirtyRects,
               const void* buffer, int width, int height) override;
    void onResized() override {}
    void onShow() override { compositor.forceFullFrame(); }
    void onPopupShow(bool show) override { compositor.onPopupShow(show); }
    void onPopupRect(const Rect16& ltrb) override { compositor.onPopupRect(ltrb); }

private:
    bool hasCallback;
    FrameCompositor compositor;
    // Steady-clock nanoseconds. Read and written by engine and render thread; a stale read only costs a refresh.
    std::atomic<int64_t> lastFullFrameTime;
    std::atomic<int64_t> lastPaintTime;
    std::atomic<bool> firstPaintPending{true};
};

}  // namespace ZEMO::UI
