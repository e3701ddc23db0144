#pragma once

#include "figures.h"
#include "pixel_rect.h"

#include <chrono>
#include <cstdint>
#include <mutex>
#include <vector>

namespace demo {

using Clock = std::chrono::steady_clock;

/// A picture of the page: bytes B, G, R, A, premultiplied, rows from top to bottom, no padding.
struct PageImage {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;
};

/// The page's picture on its way from the engine's thread to the game's.
///
/// The library hands out a finished frame on the engine thread and waits until the callback returns, so the callback
/// may do no more than copy. It copies the changed rectangle into a mirror and remembers the union of what has changed.
/// The game picks that union up once per frame, into a copy of its own: whatever it does then (an upload, a picture
/// file) no longer holds anybody up. Page and game run at their own rates; two page frames between two game frames
/// become one upload, none becomes no upload.
class PageSurface {
public:
    /// What the game has to do after take.
    struct Update {
        bool isVisible = false;     ///< there is a page to draw
        bool isNewSize = false;     ///< the image was reallocated; `changed` is all of it then
        PixelRect changed;          ///< what differs from the image of the last take
        Clock::time_point since{};  ///< when the oldest frame of this update was handed over
    };

    /// The present callback. Engine thread, or the thread that drops a view (with a null pointer). Never blocks for
    /// longer than the game's copy of one rectangle.
    void present(const void* pixels, int frameWidth, int frameHeight, const PixelRect& dirty);

    /// The callback doesn't say which view a frame belongs to, and each view reports only what changed since its own
    /// last frame. So whenever another view comes to the front, the game says so here, and the frames of the next
    /// moments are copied whole. Game thread.
    void expectAnotherView();

    /// Brings `image` up to date and says what changed. Game thread.
    Update take(PageImage& image);

    /// What the callback has measured so far. Any thread.
    CallbackFigures figures() const;

private:
    void copyRect(const std::uint8_t* pixels, const PixelRect& rect);

    // Shared between the threads, guarded by `mutex`.
    mutable std::mutex mutex;
    PageImage mirror;
    bool isVisible = false;
    bool mirrorIsStale = true;  // the mirror shows nothing of use: the next frame is copied whole
    Clock::time_point wholeFramesUntil{};
    PixelRect pending;
    Clock::time_point pendingSince{};
    CallbackFigures measured;
};

}  // namespace demo
