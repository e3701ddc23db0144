#include "plane.h"

namespace ZEMO::GraphicsHook {

void Plane::take(const UI::Hook::RectList* rects, const void* buffer, int newWidth, int newHeight) {
    if (!buffer || newWidth < 1 || newHeight < 1) return;
    const bool isWhole = !rects || pixels.empty() || newWidth != width || newHeight != height;
    width = newWidth;
    height = newHeight;
    pixels.resize(static_cast<size_t>(width) * height);
    ++frame;
    const auto* source = static_cast<const uint32_t*>(buffer);
    if (isWhole) {
        changed = {};  // it may be of a larger size
        return copy(source, whole());
    }
    for (const UI::Hook::DirtyRect& r : *rects) copy(source, {r.x, r.y, r.x + r.width, r.y + r.height});
}

void Plane::clear() {
    pixels = {};
    width = height = 0;
    changed = {};
}

Box Plane::changedSince(uint64_t& seen) {
    const Box box = seen == base && seen != 0 ? changed : whole();
    if (seen != frame) changed = {};
    const bool isNew = seen != frame;
    seen = base = frame;
    return isNew ? box : Box{};
}

void Plane::copy(const uint32_t* source, Box box) {
    box = {std::max(box.left, 0), std::max(box.top, 0), std::min(box.right, width), std::min(box.bottom, height)};
    if (box.isEmpty()) return;
    changed.add(box);
    for (int y = box.top; y < box.bottom; ++y) {
        const ptrdiff_t start = static_cast<ptrdiff_t>(y) * width + box.left;
        std::copy_n(source + start, box.right - box.left, pixels.begin() + start);
    }
}

}  // namespace ZEMO::GraphicsHook
