#include "page_surface.h"

#include <cstring>

namespace demo {

namespace {

/// A frame of the view before may still be on its way when another view comes to the front; all is settled well within
/// this time.
constexpr auto kSwitchTime = std::chrono::milliseconds(500);

}  // namespace

void PageSurface::present(const void* pixels, int frameWidth, int frameHeight, const PixelRect& dirty) {
    const auto entered = Clock::now();
    const std::lock_guard lock(mutex);
    if (!pixels || frameWidth <= 0 || frameHeight <= 0) {
        isVisible = false;
        mirrorIsStale = true;
        pending = {};
        return;
    }

    const bool isNewSize = frameWidth != mirror.width || frameHeight != mirror.height;
    if (isNewSize) {
        mirror.width = frameWidth;
        mirror.height = frameHeight;
        mirror.pixels.resize(static_cast<std::size_t>(frameWidth) * frameHeight * 4);
    }
    // The pointer always holds the whole frame, so a consumer that lost its copy simply takes more than the rectangle.
    const PixelRect whole{0, 0, frameWidth, frameHeight};
    const PixelRect changed = clip(dirty, frameWidth, frameHeight);
    const PixelRect copied = isNewSize || mirrorIsStale || entered < wholeFramesUntil ? whole : changed;
    copyRect(static_cast<const std::uint8_t*>(pixels), copied);
    if (pending.isEmpty() && !copied.isEmpty()) pendingSince = entered;
    pending = unite(pending, copied);
    mirrorIsStale = false;
    isVisible = true;

    measured.frames += 1;
    measured.unchangedFrames += changed.isEmpty() ? 1 : 0;
    measured.changedPixels += changed.area();
    measured.framePixels += whole.area();
    measured.callbackMs.add(milliseconds(Clock::now() - entered));
}

void PageSurface::copyRect(const std::uint8_t* pixels, const PixelRect& rect) {
    const std::size_t stride = static_cast<std::size_t>(mirror.width) * 4;
    const std::size_t rowBytes = static_cast<std::size_t>(rect.width) * 4;
    std::size_t offset = rect.y * stride + static_cast<std::size_t>(rect.x) * 4;
    for (int row = 0; row < rect.height; ++row, offset += stride) {
        std::memcpy(mirror.pixels.data() + offset, pixels + offset, rowBytes);
    }
}

void PageSurface::expectAnotherView() {
    const std::lock_guard lock(mutex);
    mirrorIsStale = true;
    wholeFramesUntil = Clock::now() + kSwitchTime;
}

PageSurface::Update PageSurface::take(PageImage& image) {
    const std::lock_guard lock(mutex);
    Update update{isVisible, false, pending, pendingSince};
    if (!isVisible || pending.isEmpty()) return update;

    update.isNewSize = image.width != mirror.width || image.height != mirror.height;
    if (update.isNewSize) {
        image = mirror;
        update.changed = {0, 0, mirror.width, mirror.height};
    } else {
        const std::size_t stride = static_cast<std::size_t>(mirror.width) * 4;
        const std::size_t rowBytes = static_cast<std::size_t>(pending.width) * 4;
        std::size_t offset = pending.y * stride + static_cast<std::size_t>(pending.x) * 4;
        for (int row = 0; row < pending.height; ++row, offset += stride) {
            std::memcpy(image.pixels.data() + offset, mirror.pixels.data() + offset, rowBytes);
        }
    }
    pending = {};
    return update;
}

CallbackFigures PageSurface::figures() const {
    const std::lock_guard lock(mutex);
    return measured;
}

}  // namespace demo
