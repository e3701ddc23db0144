#pragma once

#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "core/geometry.h"
#include "render/frame_compositor.h"

namespace ZEMO::UI {

using Pixels = std::vector<uint32_t>;

struct Presented {
    bool null = false;
    int width = 0;
    int height = 0;
    Rect dirty;
    Pixels pixels;
};

/// Takes what the compositor presents, and keeps a copy the way a game does: only the dirty rectangle is uploaded.
struct Consumer {
    std::vector<Presented> calls;
    Pixels copy;
    int width = 0;
    int height = 0;

    OsrFramePresentCallback sink() {
        return [this](const void* pixels, int w, int h, int x, int y, int dw, int dh) {
            Presented call{pixels == nullptr, w, h, {x, y, dw, dh}, {}};
            if (pixels) {
                call.pixels.resize(static_cast<size_t>(w) * h);
                std::memcpy(call.pixels.data(), pixels, call.pixels.size() * 4);
                if (w != width || h != height) copy.assign(call.pixels.size(), 0xDEADBEEF);
                width = w;
                height = h;
                for (int row = y; row < y + dh; ++row) {
                    for (int column = x; column < x + dw; ++column) {
                        copy.at(static_cast<size_t>(row) * w + column) =
                            call.pixels.at(static_cast<size_t>(row) * w + column);
                    }
                }
            }
            calls.push_back(std::move(call));
        };
    }

    const Presented& last() const { return calls.back(); }
    uint32_t at(int x, int y) const { return calls.back().pixels.at(static_cast<size_t>(y) * calls.back().width + x); }
};

inline bool contains(const Rect& outer, const Rect& inner) {
    return outer.x <= inner.x && outer.y <= inner.y && outer.x + outer.width >= inner.x + inner.width &&
           outer.y + outer.height >= inner.y + inner.height;
}

}  // namespace ZEMO::UI
