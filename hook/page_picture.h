#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <mutex>

#include "plane.h"

namespace ZEMO::GraphicsHook {

/// What is to be seen of the page, on its way from the engine's thread to the game's render thread. The library's calls
/// write it, a painter reads it before each present of the game.
///
/// Threads: any. The lock is held while pixels are copied in and while they are uploaded, so either side waits a copy
/// at most. Hiding and expecting take no lock: they come on threads that the game's render thread may be waiting for.
class PagePicture {
public:
    /// What a painter sees, while it sees it.
    struct Content {
        Plane& page;
        Plane& popup;
        Rect16 popupPlace;
        bool hasPopup;
        bool hasCloseButton;
    };

    /// A frame begins. Only the thread that takes frames.
    void beginFrame() { begun = state.load(std::memory_order_acquire); }
    void takeFrame(UI::Hook::PaintElementType type, const UI::Hook::RectList* rects, const void* buffer, int width,
                   int height);
    /// Nothing of the page is drawn any more; the next frame that begins shows it again. One that has begun does not:
    /// it is of the view that goes.
    void hide();
    /// The game's window is minimised: for a while frames may come in which the page is missing.
    void expectBlankFrames();
    void setCloseButton(bool draw) { closeButton.store(draw, std::memory_order_relaxed); }

    bool isPopupEmpty();
    void clearPopup();
    void setPopupVisible(bool show);
    void setPopupPlace(const Rect16& place);

    /// One load: what a present of the game costs while no page is shown.
    bool isShown() const { return (state.load(std::memory_order_acquire) & kShown) != 0; }
    /// Calls draw(Content&) with the lock held, unless nothing is shown.
    template <class Draw>
    void visit(Draw&& draw) {
        const std::lock_guard lock(mutex);
        if (!isShown()) return;
        const bool hasPopup = popupVisible && !isPopupPlaceEmpty() && !popup.isEmpty();
        Content content{page, popup, popupPlace, hasPopup, closeButton.load(std::memory_order_relaxed)};
        draw(content);
    }

private:
    static constexpr uint64_t kShown = 1;

    void show();
    bool isOfMinimisedWindow(const void* buffer, int width, int height);
    bool isPopupPlaceEmpty() const {
        return popupPlace.left >= popupPlace.right || popupPlace.top >= popupPlace.bottom;
    }

    std::atomic<uint64_t> state{0};  ///< kShown, and above it how often the page was hidden
    uint64_t begun = 0;              ///< the state when the frame began
    std::atomic<bool> closeButton{false};
    std::atomic<uint64_t> blankUntil{0};  ///< by GetTickCount64
    std::mutex mutex;                     ///< guards what follows
    Plane page;
    bool hasMissedFrame = false;  ///< the page's last frame was not taken
    Plane popup;
    Rect16 popupPlace;
    bool popupVisible = false;
};

/// The one page of the process.
PagePicture& pagePicture();

}  // namespace ZEMO::GraphicsHook
