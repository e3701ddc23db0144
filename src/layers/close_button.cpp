#include "layers/close_button.h"

#include <utility>

#include "render/close_button_metrics.h"
#include "render/display_scale.h"

namespace ZEMO::UI {

XButton::XButton(HWND window) : XButton(getWindowScale(window)) {}

XButton::XButton(float scale)
    : margin(logicalToDevice(kCloseButtonMargin, scale)),
      scaledWidthThreshold(logicalToDevice(kCloseButtonWidthThreshold, scale)),
      sizeWide(logicalToDevice(kCloseButtonSizeWide, scale)),
      sizeNarrow(logicalToDevice(kCloseButtonSizeNarrow, scale)) {}

bool XButton::hitTest(const POINT& point, const RECT& client) {
    const RECT button{client.right - size - margin, margin, client.right - margin, size + margin};
    return PtInRect(&button, point) != FALSE;
}

void XButton::onResize(const RECT& client) {
    size = client.right - client.left > scaledWidthThreshold ? sizeWide : sizeNarrow;
}

void XButton::onMouseMove(const POINT& point, const RECT& client) {
    const bool hit = hitTest(point, client);
    if (hit == hovering) return;
    SetCursor(LoadCursorW(nullptr, hit ? IDC_HAND : IDC_ARROW));
    hovering = hit;
}

void XButton::setClickCallback(std::function<void()> callback) { clickCallback = std::move(callback); }

void XButton::click() {
    // A copy: the action may destroy the view, and this button with it, while it runs.
    if (const auto action = clickCallback) action();
}

}  // namespace ZEMO::UI
