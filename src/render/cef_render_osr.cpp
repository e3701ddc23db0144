#include "render/cef_render_osr.h"

#include <chrono>
#include <utility>

#include "render/close_button_metrics.h"
#include "render/close_image.h"
#include "render/pixel_scale.h"

namespace ZEMO::UI {
namespace {

constexpr int64_t kQuietNs = 100'000'000;
constexpr int64_t kFullFrameNs = 2'000'000'000;

int64_t steadyNow() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

}  // namespace

CefRenderOSR::CefRenderOSR(OsrFramePresentCallback framePresentCallback, float scale, bool hasCloseButton)
    : hasCallback(static_cast<bool>(framePresentCallback)),
      compositor(std::move(framePresentCallback)),
      lastFullFrameTime(steadyNow()),
      lastPaintTime(steadyNow()) {
    if (hasCallback && hasCloseButton) {
        compositor.setCloseMetrics(logicalToDevice(kCloseButtonSizeWide, scale),
                                   logicalToDevice(kCloseButtonMargin, scale));
    }
    CloseImage image = loadCloseImage();
    compositor.setCloseImage(std::move(image.rgba), image.width, image.height);
}

bool CefRenderOSR::needsRepaint() {
    if (!isActive()) return false;
    if (firstPaintPending.exchange(false)) return true;
    const int64_t now = steadyNow();
    if (now - lastPaintTime < kQuietNs) return false;  // the engine paints by itself
    if (now - lastFullFrameTime < kFullFrameNs) return true;
    // A consumer that lost its copy recovers from the whole frame that the next paint hands out.
    lastFullFrameTime = now;
    compositor.forceFullFrame();
    return true;
}

void CefRenderOSR::clearFrame() {
    firstPaintPending = true;
    compositor.clearFrame();
}

bool CefRenderOSR::paint(bool drawCloseButton, CefRefPtr<CefBrowser> /*browser*/, PaintElementType type,
                         const RectList& /*dirtyRects*/, const void* buffer, int width, int height) {
    lastPaintTime = steadyNow();
    switch (type) {
        case PET_VIEW:
            compositor.paintView(drawCloseButton, buffer, width, height);
            break;
        case PET_POPUP:
            compositor.paintPopup(drawCloseButton, buffer, width, height);
            break;
        default:
            break;
    }
    return true;
}

}  // namespace ZEMO::UI
