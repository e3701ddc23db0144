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

    void takeFrame(UI::Hook::PaintElementType type, const UI::Hook::RectList* rects, const void* buffer, int width,
                   int height);
    /// Nothing of the page is drawn any more; the next frame shows it again.
    void hide() { shown.store(false, std::memory_order_release); }
    /// The game's window is minimised: for a while frames may come in which the page is missing.
    void expectBlankFrames();
    void setCloseButton(bool draw) { closeButton.store(draw, std::memory_order_relaxed); }

    bool isPopupEmpty();
    void clearPopup();
    void setPopupVisible(bool show);
    void setPopupPlace(const Rect16& place);

    /// One load: what a present of the game costs while no page is shown.
    bool isShown() const { return shown.load(std::memory_order_acquire); }
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
    bool isOfMinimisedWindow(const void* buffer, int width, int height);
    bool isPopupPlaceEmpty() const {
        return popupPlace.left >= popupPlace.right || popupPlace.top >= popupPlace.bottom;
    }

    std::atomic<bool> shown{false};
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
