#pragma once

#include <algorithm>

namespace demo {

/// A rectangle of device pixels; y grows downward. Anything without an area counts as empty.
struct PixelRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool isEmpty() const { return width <= 0 || height <= 0; }
    long long area() const { return isEmpty() ? 0 : static_cast<long long>(width) * height; }
    friend bool operator==(const PixelRect&, const PixelRect&) = default;
};

/// The smallest rectangle that holds both.
inline PixelRect unite(const PixelRect& a, const PixelRect& b) {
    if (a.isEmpty()) return b;
    if (b.isEmpty()) return a;
    const int left = std::min(a.x, b.x);
    const int top = std::min(a.y, b.y);
    return {left, top, std::max(a.x + a.width, b.x + b.width) - left, std::max(a.y + a.height, b.y + b.height) - top};
}

/// The part of `rect` that lies in a picture of the given size.
inline PixelRect clip(const PixelRect& rect, int width, int height) {
    const int left = std::clamp(rect.x, 0, width);
    const int top = std::clamp(rect.y, 0, height);
    const int right = std::clamp(rect.x + std::max(rect.width, 0), left, width);
    const int bottom = std::clamp(rect.y + std::max(rect.height, 0), top, height);
    return {left, top, right - left, bottom - top};
}

}  // namespace demo
