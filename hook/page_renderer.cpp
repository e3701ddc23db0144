#include "page_renderer.h"

#include "game_frames.h"
#include "page_picture.h"

namespace ZEMO::GraphicsHook {
namespace {

using namespace UI;

class PagePopup final : public IRenderHookPopup {
public:
    bool isEmpty() override { return pagePicture().isPopupEmpty(); }
    void clear() override { pagePicture().clearPopup(); }
    void setVisible(bool show) override { pagePicture().setPopupVisible(show); }
    void setRect(const Rect16* ltrb) override { pagePicture().setPopupPlace(*ltrb); }
};

class PageRenderer final : public IRenderHookRenderer {
public:
    void prepareFrame(bool drawCloseButton, Hook::PaintElementType, const Hook::RectList*) override {
        pagePicture().setCloseButton(drawCloseButton);
    }
    // True only announces: the frame that follows shows the page. Until then there may be another view's picture here.
    void setFrameActive(bool active) override { active ? pagePicture().beginFrame() : pagePicture().hide(); }
    void onPaint(Hook::PaintElementType type, const Hook::RectList* dirtyRects, const void* buffer, int width,
                 int height) override {
        pagePicture().takeFrame(type, dirtyRects, buffer, width, height);
    }
    IRenderHookPopup* getPopupRenderer() override { return &popup; }
    // The window's size is looked at before each present anyway, since a game resizes its frame when it likes.
    void setNeedResize(bool) override {
        if (isGameMinimised()) pagePicture().expectBlankFrames();
    }
    void setSleepTime(uint32_t milliseconds) override { setPauseAfterFrame(milliseconds); }
    void onGameWindowDestroyed(UINT, WPARAM, LPARAM) override {
        pagePicture().hide();
        leaveGameWindow();
    }

private:
    PagePopup popup;
};

PageRenderer page;

}  // namespace

UI::IRenderHookRenderer* pageRenderer() { return &page; }

}  // namespace ZEMO::GraphicsHook
