#include "page_drawing.h"

#include <cmath>

#include "close_icon.h"

namespace ZEMO::GraphicsHook {
namespace {

// Logical pixels; the library's hit area is the same.
constexpr float kCloseButtonSize = 36;
constexpr float kCloseButtonMargin = 20;
constexpr float kDpiOfScaleOne = 96;

float scaleOf(HWND window) {
    const UINT dpi = GetDpiForWindow(window);
    return dpi ? static_cast<float>(dpi) / kDpiOfScaleOne : 1;
}

Place closeButtonPlace(const Plane& page, float scale) {
    const float size = std::floor(kCloseButtonSize * scale);
    const float margin = std::floor(kCloseButtonMargin * scale);
    const float right = static_cast<float>(page.getWidth()) - margin;
    return {right - size, margin, right, margin + size};
}

Place placeOf(const Plane& plane, int left, int top) {
    return {static_cast<float>(left), static_cast<float>(top), static_cast<float>(left + plane.getWidth()),
            static_cast<float>(top + plane.getHeight())};
}

/// From pixels of the window to pixels of the game's frame.
class Stretch {
public:
    Stretch(HWND window, FrameSize frame) {
        RECT client{};
        if (!GetClientRect(window, &client) || client.right < 1 || client.bottom < 1) return;
        x = static_cast<float>(frame.width) / static_cast<float>(client.right);
        y = static_cast<float>(frame.height) / static_cast<float>(client.bottom);
    }
    Place operator()(const Place& p) const { return {p.left * x, p.top * y, p.right * x, p.bottom * y}; }

private:
    float x = 1, y = 1;
};

}  // namespace

void PageDrawing::draw(Canvas& canvas, PagePicture::Content& content, HWND window, FrameSize frame) {
    const Stretch stretched(window, frame);
    refresh(canvas, Layer::Page, content.page);
    canvas.draw(Layer::Page, stretched(placeOf(content.page, 0, 0)));
    if (content.hasPopup) {
        refresh(canvas, Layer::Popup, content.popup);
        canvas.draw(Layer::Popup, stretched(placeOf(content.popup, content.popupPlace.left, content.popupPlace.top)));
    }
    if (Plane& icon = closeIcon(); content.hasCloseButton && !icon.isEmpty()) {
        refresh(canvas, Layer::CloseButton, icon);
        canvas.draw(Layer::CloseButton, stretched(closeButtonPlace(content.page, scaleOf(window))));
    }
}

void PageDrawing::refresh(Canvas& canvas, Layer layer, Plane& plane) {
    const Box changed = plane.changedSince(seen[static_cast<size_t>(layer)]);
    if (!changed.isEmpty()) canvas.upload(layer, plane, changed);
}

}  // namespace ZEMO::GraphicsHook
