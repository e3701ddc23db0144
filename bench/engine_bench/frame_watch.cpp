#include "engine_bench/frame_watch.h"

#include <utility>

namespace ZEMO::Bench {

void FrameWatch::frame(const void* pixels, int frameWidth, int frameHeight) {
    if (!pixels || frameWidth != width || frameHeight != height) return;
    const Clock::time_point now = Clock::now();
    const size_t middle = static_cast<size_t>(height / 2) * static_cast<size_t>(width) + static_cast<size_t>(width / 2);
    const uint32_t pixel = static_cast<const uint32_t*>(pixels)[middle];
    const std::lock_guard lock(mutex);
    if (!first) first = now;
    if (!shown && pixel == pagePixel) shown = now;
    if (last != pixel) pictures.push_back(now);
    last = pixel;
}

std::optional<Clock::time_point> FrameWatch::firstFrame() const {
    const std::lock_guard lock(mutex);
    return first;
}

std::optional<Clock::time_point> FrameWatch::pageShown() const {
    const std::lock_guard lock(mutex);
    return shown;
}

std::vector<Clock::time_point> FrameWatch::takePictures() {
    const std::lock_guard lock(mutex);
    return std::exchange(pictures, {});
}

size_t FrameWatch::pictureCount() const {
    const std::lock_guard lock(mutex);
    return pictures.size();
}

}  // namespace ZEMO::Bench
