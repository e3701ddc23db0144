#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

#include "engine_bench/measured.h"

namespace ZEMO::Bench {

/// Takes frames from either host, the same way: the library's present callback or the bare engine's OnPaint. Notes when
/// the first one came, when the first one came that shows the page, and when each new picture came. One pixel in the
/// middle tells pictures apart, so a repeated frame is none.
class FrameWatch {
public:
    /// Only frames of this size count: the engine paints one of 1x1 before a page's first layout.
    FrameWatch(int wantedWidth, int wantedHeight, uint32_t pixel)
        : width(wantedWidth), height(wantedHeight), pagePixel(pixel) {}

    /// Any thread; in both hosts the engine's.
    void frame(const void* pixels, int frameWidth, int frameHeight);

    std::optional<Clock::time_point> firstFrame() const;
    std::optional<Clock::time_point> pageShown() const;

    /// Times of the new pictures since the call before.
    std::vector<Clock::time_point> takePictures();
    size_t pictureCount() const;

private:
    const int width, height;
    const uint32_t pagePixel;
    mutable std::mutex mutex;  ///< guards what follows
    std::optional<Clock::time_point> first, shown;
    std::optional<uint32_t> last;
    std::vector<Clock::time_point> pictures;
};

}  // namespace ZEMO::Bench
