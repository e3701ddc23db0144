#include "page_picture.h"

#include <algorithm>

namespace ZEMO::GraphicsHook {
namespace {

// A view without room has one logical pixel; no display is scaled more than five times.
constexpr int kNoRoomPx = 8;

// How long after its last frame without room a page may take to lay itself out anew.
constexpr uint64_t kLayoutMs = 2000;

bool isWithoutRoom(int width, int height) {
    return width < 2 || height < 2 || (width <= kNoRoomPx && height <= kNoRoomPx);
}

// Nothing but what a view without room had.
bool isBlank(const void* buffer, int width, int height) {
    const auto* pixels = static_cast<const uint32_t*>(buffer);
    for (int y = 0; y < height; ++y, pixels += width) {
        const int start = y < kNoRoomPx ? std::min(kNoRoomPx, width) : 0;
        if (std::any_of(pixels + start, pixels + width, [](uint32_t pixel) { return pixel != 0; })) return false;
    }
    return true;
}

}  // namespace

// A minimised window's view has no room, and the engine paints frames in the old and in the next size before the page
// fills them. The picture from before is right again as soon as the window is back, so none of these is taken.
bool PagePicture::isOfMinimisedWindow(const void* buffer, int width, int height) {
    if (isWithoutRoom(width, height)) {
        expectBlankFrames();
        return true;
    }
    return GetTickCount64() < blankUntil.load(std::memory_order_relaxed) && isBlank(buffer, width, height);
}

void PagePicture::expectBlankFrames() { blankUntil.store(GetTickCount64() + kLayoutMs, std::memory_order_relaxed); }

void PagePicture::hide() {
    uint64_t before = state.load(std::memory_order_relaxed);
    while (!state.compare_exchange_weak(before, (before | kShown) + 1, std::memory_order_acq_rel)) continue;
}

// Not when the page was hidden since the frame began.
void PagePicture::show() {
    uint64_t expected = begun & ~kShown;
    state.compare_exchange_strong(expected, expected | kShown, std::memory_order_acq_rel);
}

void PagePicture::takeFrame(UI::Hook::PaintElementType type, const UI::Hook::RectList* rects, const void* buffer,
                            int width, int height) {
    const std::lock_guard lock(mutex);
    if (type == UI::Hook::PET_POPUP) return popup.take(nullptr, buffer, width, height);
    const bool missed = hasMissedFrame;
    hasMissedFrame = isOfMinimisedWindow(buffer, width, height);
    if (hasMissedFrame) return;
    // Hidden meanwhile: what is here may be another view's, so no part of it stays.
    page.take(isShown() && !missed ? rects : nullptr, buffer, width, height);
    if (!page.isEmpty()) show();
}

bool PagePicture::isPopupEmpty() {
    const std::lock_guard lock(mutex);
    return isPopupPlaceEmpty();
}

void PagePicture::clearPopup() {
    const std::lock_guard lock(mutex);
    popupPlace = {};
    popup.clear();
}

void PagePicture::setPopupVisible(bool show) {
    const std::lock_guard lock(mutex);
    popupVisible = show;
}

void PagePicture::setPopupPlace(const Rect16& place) {
    const std::lock_guard lock(mutex);
    popupPlace = place;
}

// Never destroyed: threads of the game and of the engine may still come when static objects go.
PagePicture& pagePicture() {
    static PagePicture& picture = *new PagePicture;
    return picture;
}

}  // namespace ZEMO::GraphicsHook
