#include "render/frame_compositor.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "render/pixel_diff.h"

namespace ZEMO::UI {

namespace {

constexpr size_t kPixel = 4;

size_t frameBytes(int width, int height) {
    return width < 1 || height < 1 ? 0 : static_cast<size_t>(width) * static_cast<size_t>(height) * kPixel;
}

}  // namespace

void FrameCompositor::paintView(bool drawCloseButton, const void* buffer, int width, int height) {
    if (!buffer || width < 1 || height < 1) return;
    const auto* pixels = static_cast<const uint8_t*>(buffer);

    const bool sizeChanged = viewWidth != width || viewHeight != height;
    viewWidth = width;
    viewHeight = height;
    if (viewFrame.size() != frameBytes(width, height)) {
        viewFrame.resize(frameBytes(width, height));
        composedValid = false;
    }

    PixelBox dirty;
    if (sizeChanged) {
        composedValid = false;
        dirty = wholeFrame();
    } else if (fullFrameForced.exchange(false)) {
        dirty = wholeFrame();
    } else {
        dirty = findChange(pixels);
    }
    copyBox(viewFrame, pixels, dirty);

    const bool popupInUse = popupVisible && !popupFrame.empty();
    if (popupInUse || drawCloseButton) {
        compose(dirty, popupInUse, drawCloseButton);
    } else {
        presentPlain(dirty);
    }
}

void FrameCompositor::paintPopup(bool drawCloseButton, const void* buffer, int width, int height) {
    popupWidth = width;
    popupHeight = height;
    popupFrame.resize(buffer ? frameBytes(width, height) : 0);
    if (buffer && !popupFrame.empty()) std::memcpy(popupFrame.data(), buffer, popupFrame.size());

    if (viewFrame.empty() || !composedValid || composedFrame.size() != viewFrame.size()) return;
    copyBox(composedFrame, viewFrame.data(), popupBox());
    blitPopup();
    PixelBox dirty = popupBox().empty() ? PixelBox{} : clipToFrame(popupBox(), viewWidth, viewHeight);
    if (popupBox() != previousPopup) popupIntact = false;

    const PixelBox close = closeBox();
    if (overlap(dirty, close)) {
        popupIntact = closeIntact = false;
        if (drawCloseButton) {
            drawCloseImage();
            dirty = widened(dirty, close);
        }
    }
    present(composedFrame, dirty);
}

void FrameCompositor::onPopupShow(bool show) {
    popupVisible = show;
    if (!show) popupFrame.clear();
}

void FrameCompositor::clearFrame() {
    composedValid = false;
    presentCallback(nullptr, 0, 0, 0, 0, 0, 0);
}

void FrameCompositor::setCloseImage(std::vector<uint8_t> rgba, int width, int height) {
    const bool complete = !rgba.empty() && rgba.size() == frameBytes(width, height);
    closeImage = complete ? std::move(rgba) : Frame{};
    closeImageWidth = complete ? width : 0;
    closeImageHeight = complete ? height : 0;
}

void FrameCompositor::setCloseMetrics(int size, int margin) {
    closeSize = size;
    closeMargin = margin;
}

/// Smallest rectangle that holds every pixel in which `buffer` differs from the last frame. Equal rows in a run are
/// compared as one block; of a differing row only what lies outside the columns found so far is looked at.
PixelBox FrameCompositor::findChange(const uint8_t* buffer) const {
    const size_t width = static_cast<size_t>(viewWidth);
    const size_t total = width * static_cast<size_t>(viewHeight);
    size_t left = width;
    size_t right = 0;
    size_t top = 0;
    size_t bottom = 0;
    bool found = false;
    for (size_t start = 0; start < total;) {  // always the first pixel of a row
        const size_t differing =
            start + equalPixels(viewFrame.data() + start * kPixel, buffer + start * kPixel, total - start);
        if (differing == total) break;
        const size_t row = differing / width;
        const size_t column = differing % width;
        if (!found) top = row;
        found = true;
        bottom = row;
        left = std::min(left, column);
        right = std::max(right, column + 1);
        const size_t offset = row * width * kPixel;
        right = endOfDifference(viewFrame.data() + offset, buffer + offset, right, width);
        start = (row + 1) * width;
    }
    if (!found) return {};
    return {static_cast<int64_t>(left), static_cast<int64_t>(top), static_cast<int64_t>(right - left),
            static_cast<int64_t>(bottom - top + 1)};
}

PixelBox FrameCompositor::closeBox() const {
    if (closeSize < 1) return {0, closeMargin, 0, 0};
    return {int64_t{viewWidth} - closeMargin - closeSize, closeMargin, closeSize, closeSize};
}

PixelBox FrameCompositor::widened(const PixelBox& dirty, const PixelBox& by) const {
    return widen(dirty, by, viewWidth, viewHeight);
}

/// Copies the part of `box` that lies inside the frame.
void FrameCompositor::copyBox(Frame& to, const uint8_t* from, const PixelBox& box) const {
    const int64_t left = std::max<int64_t>(box.x, 0);
    const int64_t top = std::max<int64_t>(box.y, 0);
    const int64_t right = std::min<int64_t>(box.right(), viewWidth);
    const int64_t bottom = std::min<int64_t>(box.bottom(), viewHeight);
    if (left >= right || top >= bottom) return;
    const size_t stride = static_cast<size_t>(viewWidth) * kPixel;
    const size_t bytes = static_cast<size_t>(right - left) * kPixel;
    size_t offset = static_cast<size_t>(top) * stride + static_cast<size_t>(left) * kPixel;
    if (bytes == stride) {  // whole rows lie one after another
        std::memcpy(to.data() + offset, from + offset, bytes * static_cast<size_t>(bottom - top));
        return;
    }
    for (int64_t y = top; y < bottom; ++y, offset += stride) std::memcpy(to.data() + offset, from + offset, bytes);
}

/// The page alone. When the last picture still showed a popup or the icon, the consumer's copy holds their pixels, so
/// the area they were drawn on is reported too.
void FrameCompositor::presentPlain(PixelBox dirty) {
    dirty = widened(dirty, popupTrace);
    dirty = widened(dirty, closeTrace);
    popupTrace = closeTrace = {};
    composedValid = false;
    previousPopup = {previousPopup.x, previousPopup.y, 0, 0};
    previousClose = {previousClose.x, previousClose.y, 0, 0};
    present(viewFrame, dirty);
}

void FrameCompositor::compose(PixelBox dirty, bool popupInUse, bool drawCloseButton) {
    if (composedFrame.size() != viewFrame.size()) {
        composedFrame.resize(viewFrame.size());
        composedValid = false;
    }
    const PixelBox popup = popupInUse ? popupBox() : PixelBox{};
    const PixelBox close = drawCloseButton ? closeBox() : PixelBox{0, closeMargin, 0, 0};

    const bool popupChanged = popup != previousPopup;
    const bool closeChanged = close != previousClose;
    const bool popupRedraw = popupInUse && (popupChanged || overlap(dirty, popup));
    const bool closeRedraw = drawCloseButton && (closeChanged || popupRedraw || overlap(dirty, close));
    // Popup and icon are drawn over each other without care for what lies below. Wherever that happened a redraw may
    // show other pixels than before, and not only where the page changed: then all of it is reported.
    const bool crossed = overlap(popup, close) || overlap(previousPopup, close) || overlap(popup, previousClose) ||
                         overlap(previousPopup, previousClose);
    const bool reportPopup = popupChanged || (popupRedraw && (crossed || !popupIntact));
    const bool reportClose = closeChanged || (closeRedraw && (crossed || !closeIntact || overlap(dirty, close)));

    const bool fromScratch = !composedValid;
    if (fromScratch) {
        copyBox(composedFrame, viewFrame.data(), wholeFrame());
        dirty = wholeFrame();
        composedValid = true;
        popupTrace = closeTrace = {};
    } else {
        copyBox(composedFrame, viewFrame.data(), dirty);
        if (popupChanged) copyBox(composedFrame, viewFrame.data(), previousPopup);
        if (closeChanged) copyBox(composedFrame, viewFrame.data(), previousClose);
        if (popupRedraw) copyBox(composedFrame, viewFrame.data(), popup);
        if (closeRedraw) copyBox(composedFrame, viewFrame.data(), close);
    }
    if (popupInUse && (fromScratch || popupRedraw)) blitPopup();
    if (drawCloseButton && (fromScratch || closeRedraw)) drawCloseImage();

    if (popupChanged) dirty = widened(dirty, previousPopup);
    if (reportPopup) dirty = widened(dirty, popup);
    if (closeChanged) dirty = widened(dirty, previousClose);
    if (reportClose) dirty = widened(dirty, close);

    popupIntact = !crossed && (popupIntact || fromScratch || popupRedraw || !popupInUse);
    closeIntact = !crossed && (closeIntact || fromScratch || closeRedraw || !drawCloseButton);
    previousPopup = popup;
    previousClose = close;
    present(composedFrame, dirty);
}

/// Replaces pixels, no blending. A popup that begins left of the view is not drawn at all; one that begins above or
/// reaches past the right or bottom edge is cut.
void FrameCompositor::blitPopup() {
    popupTrace = widened(popupTrace, popupBox());
    if (popupFrame.empty() || popupEdges.left < 0 || popupEdges.left >= viewWidth) return;
    const size_t bytes = static_cast<size_t>(std::min(viewWidth - popupEdges.left, popupWidth)) * kPixel;
    const int64_t first = std::max<int64_t>(0, -int64_t{popupEdges.top});
    const int64_t end = std::min<int64_t>(popupHeight, int64_t{viewHeight} - popupEdges.top);
    for (int64_t row = first; row < end; ++row) {
        const size_t target = static_cast<size_t>(popupEdges.top + row) * static_cast<size_t>(viewWidth) +
                              static_cast<size_t>(popupEdges.left);
        const size_t source = static_cast<size_t>(row) * static_cast<size_t>(popupWidth);
        std::memcpy(composedFrame.data() + target * kPixel, popupFrame.data() + source * kPixel, bytes);
    }
}

/// Scales the icon to its square (bilinear, 32-bit float) and blends it over the frame. Channels are not swapped
/// although the icon is RGBA and the frame BGRA: the icon is grey.
void FrameCompositor::drawCloseImage() {
    closeTrace = widened(closeTrace, closeBox());
    if (closeImage.empty() || closeSize < 1) return;
    const auto size = static_cast<float>(closeSize);
    const auto imageWidth = static_cast<float>(closeImageWidth);
    const auto imageHeight = static_cast<float>(closeImageHeight);
    const PixelBox box = closeBox();
    const int64_t firstColumn = std::max<int64_t>(0, -box.x);
    const int64_t endColumn = std::min<int64_t>(closeSize, viewWidth - box.x);
    const int64_t firstRow = std::max<int64_t>(0, -box.y);
    const int64_t endRow = std::min<int64_t>(closeSize, viewHeight - box.y);

    for (int64_t j = firstRow; j < endRow; ++j) {
        const float sy = (static_cast<float>(j) + 0.5f) * imageHeight / size - 0.5f;
        const int y0 = std::clamp(static_cast<int>(sy), 0, closeImageHeight - 1);
        const int y1 = std::min(closeImageHeight - 1, y0 + 1);
        const float fy = sy - std::floor(sy);
        uint8_t* target = composedFrame.data() + (static_cast<size_t>(box.y + j) * static_cast<size_t>(viewWidth) +
                                                  static_cast<size_t>(box.x + firstColumn)) *
                                                     kPixel;
        for (int64_t i = firstColumn; i < endColumn; ++i, target += kPixel) {
            const float sx = (static_cast<float>(i) + 0.5f) * imageWidth / size - 0.5f;
            const int x0 = std::clamp(static_cast<int>(sx), 0, closeImageWidth - 1);
            const int x1 = std::min(closeImageWidth - 1, x0 + 1);
            const float fx = sx - std::floor(sx);
            const auto texel = [&](int x, int y) {
                return closeImage.data() +
                       (static_cast<size_t>(y) * static_cast<size_t>(closeImageWidth) + static_cast<size_t>(x)) *
                           kPixel;
            };
            const uint8_t* corner[] = {texel(x0, y0), texel(x1, y0), texel(x0, y1), texel(x1, y1)};
            float sample[4];
            for (int c = 0; c < 4; ++c) {
                const float upper = corner[0][c] * (1.0f - fx) + corner[1][c] * fx;
                const float lower = corner[2][c] * (1.0f - fx) + corner[3][c] * fx;
                sample[c] = upper * (1.0f - fy) + lower * fy;
            }
            const float alpha = sample[3] / 255.0f;
            for (int c = 0; c < 3; ++c) {
                target[c] = static_cast<uint8_t>(static_cast<float>(target[c]) * (1.0f - alpha) + sample[c] * alpha);
            }
            target[3] = 255;
        }
    }
}

void FrameCompositor::present(const Frame& frame, const PixelBox& dirty) {
    presentCallback(frame.data(), viewWidth, viewHeight, static_cast<int>(dirty.x), static_cast<int>(dirty.y),
                    static_cast<int>(dirty.width), static_cast<int>(dirty.height));
}

}  // namespace ZEMO::UI
