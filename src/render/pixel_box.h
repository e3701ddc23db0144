#pragma once

#include <algorithm>
#include <cstdint>

// Rectangles of the compositor. Popup rectangles come from a page through the engine and may hold any number, so edges
// are computed in 64 bits; what leaves the compositor is clipped to a frame and fits an int again.
namespace ZEMO::UI {

struct PixelBox {
    int64_t x = 0;
    int64_t y = 0;
    int64_t width = 0;
    int64_t height = 0;

    bool empty() const { return width < 1 || height < 1; }
    int64_t right() const { return x + width; }
    int64_t bottom() const { return y + height; }
    friend bool operator==(const PixelBox&, const PixelBox&) = default;
};

/// Each starts before the other ends, on both axes. Empty boxes overlap nothing.
inline bool overlap(const PixelBox& a, const PixelBox& b) {
    return !a.empty() && !b.empty() && a.x < b.right() && b.x < a.right() && a.y < b.bottom() && b.y < a.bottom();
}

/// Moves the origin into the frame and cuts the size to what is left of the frame from there. A box that begins left of
/// the frame keeps its width, so the result may say more than the intersection, never less.
inline PixelBox clipToFrame(PixelBox box, int frameWidth, int frameHeight) {
    box.x = std::max<int64_t>(box.x, 0);
    box.y = std::max<int64_t>(box.y, 0);
    box.width = std::min(box.width, frameWidth - box.x);
    box.height = std::min(box.height, frameHeight - box.y);
    return box.empty() ? PixelBox{} : box;
}

/// `box` grown by `other` and clipped; an empty `box` becomes `other`. An empty `other` changes nothing.
inline PixelBox widen(const PixelBox& box, const PixelBox& other, int frameWidth, int frameHeight) {
    if (other.empty()) return box;
    if (box.empty()) return clipToFrame(other, frameWidth, frameHeight);
    const int64_t x = std::min(box.x, other.x);
    const int64_t y = std::min(box.y, other.y);
    return clipToFrame({x, y, std::max(box.right(), other.right()) - x, std::max(box.bottom(), other.bottom()) - y},
                       frameWidth, frameHeight);
}

}  // namespace ZEMO::UI
