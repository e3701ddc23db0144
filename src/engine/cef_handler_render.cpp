#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdint>

#include "engine/cef_handler.h"
#include "include/cef_browser.h"
#include "render/display_scale.h"
#include "render/rendering_mode.h"

// The paint side of the browser client: what the engine is told of the view's size, where its frames go, and the render
// thread that keeps frames coming on a quiet page.
namespace ZEMO::UI {
namespace {

constexpr std::chrono::duration<DWORD, std::milli> kRenderCycle(100);
constexpr int kWiggleSteps = 10;
/// The engine paints frames of 1x1 before a page's first layout; no local renderer gets those.
constexpr int kSmallestLocalFrame = 2;

// A page's rectangle may be any; its end stays within an int.
int endOf(int start, int length) {
    return static_cast<int>(std::clamp(int64_t{start} + length, int64_t{INT_MIN}, int64_t{INT_MAX}));
}

}  // namespace

void CefHandler::ensureRenderer() {
    if (renderImpl->isActive() && windowStyle == WindowStyle::Layer) return;
    if (!renderer.load()) renderer.store(createOsrRenderer(kRendererOpenGL, window, hasCloseButton));
}

void CefHandler::refreshBrowser() {
    if (stopped || !visible) return;
    if (const CefRefPtr<CefBrowser> current = getBrowser()) {
        current->GetHost()->WasResized();
        current->GetHost()->Invalidate(PET_VIEW);
    }
}

void CefHandler::renderThreadMain() {
    if (stopped) return;
    while (!closing) {
        renderImpl->tick(hookSleepTime);
        ensureRenderer();
        const std::shared_ptr<IOsrRenderer> local = renderer.load();
        if (windowStyle == WindowStyle::Layer && renderImpl->needsRepaint()) {
            refreshBrowser();
        } else if (local && local->isPopupRectEmpty()) {
            refreshBrowser();
        }
        if (local && !stopped && visible) {
            bool resize = needResize.exchange(false);
            local->render(&resize);
            if (resize) needResize = true;
        }
        if (!waitForNextCycle()) return;
    }
}

// Waits the rest of the cycle, or less when the view ends; false then.
bool CefHandler::waitForNextCycle() {
    if (WaitForSingleObject(stopEvent.get(), kRenderCycle.count()) == WAIT_FAILED) Sleep(kRenderCycle.count());
    return !stopped;
}

void CefHandler::onWindowResized() {
    refreshBrowser();
    needResize = true;
    renderImpl->onResized();
}

void CefHandler::setVisible(bool show, bool keepHookFrame) {
    visible = show;
    if (show) {
        if (getBrowser()) {
            refreshBrowser();
            needResize = true;
        }
        return;
    }
    if (!keepHookFrame && windowStyle == WindowStyle::Layer) renderImpl->onViewClosed();
    if (const auto local = renderer.load()) local->onViewHidden();
    InvalidateRect(window, nullptr, TRUE);
}

void CefHandler::GetViewRect(CefRefPtr<CefBrowser> /*browser*/, CefRect& rect) {
    if (noWindow) {
        RECT desktop{};
        GetWindowRect(GetDesktopWindow(), &desktop);
        rect.Set(0, 0, desktop.right - desktop.left, desktop.bottom - desktop.top);
        return;
    }
    RECT client{};
    if (!IsWindow(window) || !GetClientRect(window, &client)) {
        rect.Set(0, 0, 1, 1);
        return;
    }
    int width = std::max(1, deviceToLogical(client.right - client.left, dpiScale));
    int height = std::max(1, deviceToLogical(client.bottom - client.top, dpiScale));
    if (wiggleResize && getRenderingMode() == RenderingMode::D3D11) {
        if (wiggleCount < 1) {
            wiggleResize = false;
            wiggleCount = kWiggleSteps;
        } else {
            if (width - wiggleCount > 0 && height - wiggleCount > 0) {
                width -= wiggleCount;
                height -= wiggleCount;
            }
            --wiggleCount;
        }
    }
    rect.Set(0, 0, width, height);
}

bool CefHandler::GetScreenInfo(CefRefPtr<CefBrowser> source, CefScreenInfo& screen_info) {
    if (!IsWindow(window)) return false;
    CefRect view;
    GetViewRect(source, view);
    screen_info.device_scale_factor = dpiScale;
    screen_info.rect = view;
    screen_info.available_rect = view;
    return true;
}

void CefHandler::OnPaint(CefRefPtr<CefBrowser> source, PaintElementType type, const RectList& dirtyRects,
                         const void* buffer, int width, int height) {
    const std::lock_guard paint(paintMutex);
    if (closing || !visible) return;
    takeFrame(source, type, dirtyRects, buffer, width, height);
    if (clearPending.exchange(false)) renderImpl->clearFrame();  // the view ended meanwhile
}

void CefHandler::takeFrame(const CefRefPtr<CefBrowser>& source, PaintElementType type, const RectList& dirtyRects,
                           const void* buffer, int width, int height) {
    if (windowStyle == WindowStyle::Layer) {
        const bool drawClose = hasCloseButton && closeButtonShown;
        if (renderImpl->paint(drawClose, source, type, dirtyRects, buffer, width, height)) return;
    }
    const std::shared_ptr<IOsrRenderer> local = renderer.load();
    if (!local || width < kSmallestLocalFrame || height < kSmallestLocalFrame || !IsWindow(window)) return;
    local->onPaint(type, dirtyRects, buffer, width, height);
    if (type != PET_VIEW) return;
    CefRect popup;
    local->getPopupRect(&popup);
    if (popup.width > 0 && popup.height > 0) source->GetHost()->Invalidate(PET_POPUP);
}

void CefHandler::OnPopupShow(CefRefPtr<CefBrowser> source, bool show) {
    if (windowStyle == WindowStyle::Layer) renderImpl->onPopupShow(show);
    const std::shared_ptr<IOsrRenderer> local = renderer.load();
    if (!show) {
        if (local) local->clearPopupRects();
        source->GetHost()->Invalidate(PET_VIEW);
    }
    if (local) local->onPopupShow(source, show);
}

void CefHandler::OnPopupSize(CefRefPtr<CefBrowser> source, const CefRect& rect) {
    Rect device;
    logicalToDeviceRect(device, Rect{rect.x, rect.y, rect.width, rect.height}, dpiScale);
    if (windowStyle == WindowStyle::Layer) {
        renderImpl->onPopupRect({device.x, device.y, endOf(device.x, device.width), endOf(device.y, device.height)});
    }
    if (const auto local = renderer.load()) {
        local->onPopupSize(source, CefRect(device.x, device.y, device.width, device.height));
    }
}

}  // namespace ZEMO::UI
