#include "engine/client/frames/page_frames.h"

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdint>
#include <utility>

#include "engine/client/frames/refresh_task.h"
#include "render/pixel_scale.h"

// The end of frames, in order: no frame is taken any more, the render thread ends, the consumer hears that there is
// nothing left to show. That notice is always the last call and never comes beside or inside a frame: when one is being
// taken, by another thread that takes too long or by the very call that drops the view, the paint tells the consumer as
// it returns. A local renderer is not waited for: it draws outside of the lock, into a window that may have gone, and a
// picture that came too late is taken off again.
namespace ZEMO::UI {
namespace {

/// The engine paints frames of 1x1 before a page's first layout; no local renderer gets those.
constexpr int kSmallestLocalFrame = 2;

/// How long the end of a view waits for a frame that the game is just taking. A consumer that blocks longer breaks its
/// contract.
constexpr auto kPaintGrace = std::chrono::milliseconds(500);

// A page's rectangle may be any; its end stays within an int.
int endOf(int start, int length) {
    return static_cast<int>(std::clamp(int64_t{start} + length, int64_t{INT_MIN}, int64_t{INT_MAX}));
}

}  // namespace

PageFrames::PageFrames(HWND viewWindow, float dpiScale, bool closeButton, uint32_t sleepTime,
                       std::unique_ptr<CefRenderImpl> frameConsumer, BrowserSource browserSource)
    : window(viewWindow),
      scale(dpiScale),
      hasCloseButton(closeButton),
      hookSleepTime(sleepTime),
      consumer(std::move(frameConsumer)),
      getBrowser(std::move(browserSource)),
      viewSize(viewWindow, dpiScale) {
    ensureRenderer();
}

void PageFrames::start() {
    cycle.start([this] { return runCycle(); });
}

void PageFrames::stop() {
    setShown(false);
    cycle.stop();
}

void PageFrames::setShown(bool shown) {
    const std::lock_guard lock(shownMutex);
    visible = shown;
}

void PageFrames::whileShown(const std::function<void()>& action) {
    const std::lock_guard lock(shownMutex);
    if (isShown()) action();
}

void PageFrames::finish(bool lastLayer) {
    clearPending = true;
    const bool insideFrame = paintThread == GetCurrentThreadId();
    std::unique_lock paint(paintMutex, std::defer_lock);
    const bool noPaintRuns = !insideFrame && paint.try_lock_for(kPaintGrace);
    if (!closing && lastLayer) consumer->onViewClosed();
    if (const auto local = renderer.load()) local->onViewHidden();
    if (noPaintRuns && clearPending.exchange(false)) consumer->clearFrame();
    if (window) InvalidateRect(window, nullptr, TRUE);
}

void PageFrames::ensureRenderer() {
    if (consumer->isActive()) return;
    if (!renderer.load()) renderer.store(createOsrRenderer(kRendererOpenGL, window, hasCloseButton));
}

void PageFrames::refreshBrowser() {
    if (cycle.isStopped() || !visible) return;
    // Posted on the engine's thread too, which would paint within the call: a game that shows a view inside one of its
    // callbacks would get that frame there, in the middle of another one and under the locks of that show.
    if (const CefRefPtr<CefBrowser> current = getBrowser()) CefPostTask(TID_UI, new RefreshTask(current));
}

bool PageFrames::runCycle() {
    if (closing) return false;
    consumer->tick(hookSleepTime);
    ensureRenderer();
    const std::shared_ptr<IOsrRenderer> local = renderer.load();
    if (consumer->needsRepaint() || (local && local->isPopupRectEmpty())) refreshBrowser();
    if (local && !cycle.isStopped() && visible) {
        bool resize = needResize.exchange(false);
        local->render(&resize);
        if (resize) needResize = true;
    }
    return true;
}

void PageFrames::onWindowResized() {
    refreshBrowser();
    needResize = true;
    consumer->onResized();
}

void PageFrames::setVisible(bool show, bool keepHookFrame) {
    if (show) consumer->onShow();  // first: no frame may come between
    setShown(show);
    if (show) {
        if (getBrowser()) {
            refreshBrowser();
            needResize = true;
        }
        return;
    }
    if (!keepHookFrame) consumer->onViewClosed();
    if (const auto local = renderer.load()) local->onViewHidden();
    if (window) InvalidateRect(window, nullptr, TRUE);
}

void PageFrames::onPaint(const CefRefPtr<CefBrowser>& source, PaintElementType type, const RectList& dirtyRects,
                         const void* buffer, int width, int height) {
    if (!offerToConsumer(source, type, dirtyRects, buffer, width, height)) {
        drawLocally(source, type, dirtyRects, buffer, width, height);
    }
}

// True when nothing is left to do with the frame.
bool PageFrames::offerToConsumer(const CefRefPtr<CefBrowser>& source, PaintElementType type, const RectList& dirtyRects,
                                 const void* buffer, int width, int height) {
    // A consumer that asks for the popup's frame gets it within its own call.
    const bool insideFrame = paintThread == GetCurrentThreadId();
    std::unique_lock paint(paintMutex, std::defer_lock);
    if (!insideFrame) paint.lock();
    if (closing || !visible) return true;
    const bool drawClose = hasCloseButton && closeButtonShown;
    paintThread = GetCurrentThreadId();
    const bool taken = consumer->paint(drawClose, source, type, dirtyRects, buffer, width, height);
    if (insideFrame) return taken;
    paintThread = 0;
    if (clearPending.exchange(false)) consumer->clearFrame();  // the view ended meanwhile
    return taken;
}

void PageFrames::drawLocally(const CefRefPtr<CefBrowser>& source, PaintElementType type, const RectList& dirtyRects,
                             const void* buffer, int width, int height) {
    const std::shared_ptr<IOsrRenderer> local = renderer.load();
    if (!local || width < kSmallestLocalFrame || height < kSmallestLocalFrame || !IsWindow(window)) return;
    local->onPaint(type, dirtyRects, buffer, width, height);
    // Hidden or dropped in the meantime, by a thread that did not wait: the picture comes off the window again.
    if (!isShown()) InvalidateRect(window, nullptr, TRUE);
    if (type != PET_VIEW) return;
    CefRect popup;
    local->getPopupRect(&popup);
    if (popup.width > 0 && popup.height > 0) source->GetHost()->Invalidate(PET_POPUP);
}

void PageFrames::onPopupShow(const CefRefPtr<CefBrowser>& source, bool show) {
    consumer->onPopupShow(show);
    const std::shared_ptr<IOsrRenderer> local = renderer.load();
    if (!show) {
        if (local) local->clearPopupRects();
        source->GetHost()->Invalidate(PET_VIEW);
    }
    if (local) local->onPopupShow(source, show);
}

void PageFrames::onPopupSize(const CefRefPtr<CefBrowser>& source, const CefRect& rect) {
    Rect device;
    logicalToDeviceRect(device, Rect{rect.x, rect.y, rect.width, rect.height}, scale);
    consumer->onPopupRect({device.x, device.y, endOf(device.x, device.width), endOf(device.y, device.height)});
    if (const auto local = renderer.load()) {
        local->onPopupSize(source, CefRect(device.x, device.y, device.width, device.height));
    }
}

}  // namespace ZEMO::UI
