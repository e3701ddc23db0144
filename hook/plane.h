#pragma once

#include <zemo/graphics_hook.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace ZEMO::GraphicsHook {

/// Pixels by edges; right and bottom are exclusive.
struct Box {
    int left = 0, top = 0, right = 0, bottom = 0;
    bool isEmpty() const { return left >= right || top >= bottom; }
    void add(const Box& other) {
        if (other.isEmpty()) return;
        *this = isEmpty() ? other
                          : Box{std::min(left, other.left), std::min(top, other.top), std::max(right, other.right),
                                std::max(bottom, other.bottom)};
    }
};

/// A copy of pixels that the engine has painted, and which part of it a texture still lacks. 32 bits a pixel, rows from
/// top to bottom without a gap. No lock of its own.
class Plane {
public:
    int getWidth() const { return width; }
    int getHeight() const { return height; }
    bool isEmpty() const { return pixels.empty(); }
    const uint32_t* row(int y) const { return pixels.data() + static_cast<size_t>(y) * width; }
    Box whole() const { return {0, 0, width, height}; }

    /// Copies what `rects` names; all of it for null, for another size and for the first frame after clear.
    void take(const UI::Hook::RectList* rects, const void* buffer, int newWidth, int newHeight);
    void clear();

    /// What changed since the frame that `seen` stands for, which becomes the newest one. Zero stands for none.
    Box changedSince(uint64_t& seen);

private:
    void copy(const uint32_t* source, Box box);

    std::vector<uint32_t> pixels;
    int width = 0, height = 0;
    Box changed;         ///< since frame `base`
    uint64_t frame = 0;  ///< counts frames, never back
    uint64_t base = 0;
};

}  // namespace ZEMO::GraphicsHook
