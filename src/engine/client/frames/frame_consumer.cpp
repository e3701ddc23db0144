#include "engine/client/frames/frame_consumer.h"

#include <utility>

#include "core/process_end.h"
#include "render/cef_render_osr.h"
#include "render/hook/cef_render_hook.h"

namespace ZEMO::UI {
namespace {

// The game's callback was fetched when the layer was made: the gate is passed again with each frame.
OsrFramePresentCallback gated(OsrFramePresentCallback callback) {
    return [present = std::move(callback)](const void* pixels, int width, int height, int dirtyX, int dirtyY,
                                           int dirtyWidth, int dirtyHeight) {
        if (!Core::isProcessEnding()) present(pixels, width, height, dirtyX, dirtyY, dirtyWidth, dirtyHeight);
    };
}

class OwnWindowConsumer final : public CefRenderImpl {
public:
    explicit OwnWindowConsumer(std::unique_ptr<CefRenderImpl> chosen) : consumer(std::move(chosen)) {}
    void tick(uint32_t openGlSleepTime) override { consumer->tick(openGlSleepTime); }
    bool isActive() override { return false; }
    bool needsRepaint() override { return false; }
    void onViewClosed() override {}
    void clearFrame() override {}
    bool paint(bool, CefRefPtr<CefBrowser>, PaintElementType, const RectList&, const void*, int, int) override {
        return false;
    }
    void onResized() override { consumer->onResized(); }
    void onPopupShow(bool) override {}
    void onPopupRect(const Rect16&) override {}

private:
    std::unique_ptr<CefRenderImpl> consumer;
};

}  // namespace

std::unique_ptr<CefRenderImpl> makeFrameConsumer(HMODULE hookModule, uint32_t hookSleepTime,
                                                 OsrFramePresentCallback callback, float dpiScale,
                                                 bool hasCloseButton) {
    if (!hookModule && callback) {
        return std::make_unique<CefRenderOSR>(gated(std::move(callback)), dpiScale, hasCloseButton);
    }
    return std::make_unique<CefRenderHook>(hookModule, hookSleepTime);
}

std::unique_ptr<CefRenderImpl> consumerForStyle(WindowStyle style, std::unique_ptr<CefRenderImpl> consumer) {
    if (style == WindowStyle::Layer) return consumer;
    return std::make_unique<OwnWindowConsumer>(std::move(consumer));
}

}  // namespace ZEMO::UI
