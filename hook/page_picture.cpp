#include "page_picture.h"

namespace ZEMO::GraphicsHook {

void PagePicture::takeFrame(UI::Hook::PaintElementType type, const UI::Hook::RectList* rects, const void* buffer,
                            int width, int height) {
    const std::lock_guard lock(mutex);
    if (type == UI::Hook::PET_POPUP) return popup.take(nullptr, buffer, width, height);
    const bool missed = hasMissedFrame;
    // A minimised window's page. The one from before is right again as soon as the window is back.
    hasMissedFrame = width < 2 || height < 2;
    if (hasMissedFrame) return;
    // Hidden meanwhile: what is here may be another view's, so no part of it stays.
    page.take(isShown() && !missed ? rects : nullptr, buffer, width, height);
    if (!page.isEmpty()) shown.store(true, std::memory_order_release);
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
