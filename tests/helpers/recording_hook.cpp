// A graphics hook module that hooks nothing: it answers what a test tells it to, writes down each call with its
// arguments and keeps the last pixels. What a game's frame looks like with a page in it is for the real module to show.
#include <zemo/graphics_hook.h>

#include <format>

#include "helpers/hook_recording.h"

namespace {

using namespace ZEMO::UI;
using ZEMO::Test::HookRecording;

HookRecording recording;

void note(std::string text) {
    const std::lock_guard lock(recording.mutex);
    recording.calls.push_back({std::move(text), GetCurrentThreadId()});
}

const char* name(Hook::PaintElementType type) { return type == Hook::PET_VIEW ? "view" : "popup"; }

std::string describe(const Hook::RectList* rects) {
    std::string text;
    for (const auto& r : *rects) text += std::format("({},{} {}x{})", r.x, r.y, r.width, r.height);
    return text;
}

class RecordingPopup final : public IRenderHookPopup {
public:
    bool isEmpty() override { return recording.popupEmpty; }
    void clear() override {
        recording.popupEmpty = true;
        note("popup clear");
    }
    void setVisible(bool show) override { note(std::format("popup setVisible {}", show)); }
    void setRect(const ZEMO::Rect16* r) override {
        recording.popupEmpty = false;
        note(std::format("popup setRect {} {} {} {}", r->left, r->top, r->right, r->bottom));
    }
};

class RecordingRenderer final : public IRenderHookRenderer {
public:
    void onPaint(Hook::PaintElementType type, const Hook::RectList* dirtyRects, const void* buffer, int width,
                 int height) override {
        note(std::format("onPaint {} {} {}x{}", name(type), describe(dirtyRects), width, height));
        recording.lastBuffer = buffer;
        if (!buffer) return;
        const auto* pixels = static_cast<const uint32_t*>(buffer);
        const std::lock_guard lock(recording.mutex);
        const bool view = type == Hook::PET_VIEW;
        (view ? recording.view : recording.popup).assign(pixels, pixels + static_cast<size_t>(width) * height);
        (view ? recording.viewWidth : recording.popupWidth) = width;
        (view ? recording.viewHeight : recording.popupHeight) = height;
    }
    void setFrameActive(bool active) override { note(std::format("setFrameActive {}", active)); }
    IRenderHookPopup* getPopupRenderer() override { return recording.hasPopup ? &popup : nullptr; }
    void prepareFrame(bool close, Hook::PaintElementType type, const Hook::RectList* dirtyRects) override {
        note(std::format("prepareFrame {} {} {}", close, name(type), describe(dirtyRects)));
    }
    void setNeedResize(bool value) override { note(std::format("setNeedResize {}", value)); }
    void setSleepTime(uint32_t milliseconds) override { note(std::format("setSleepTime {}", milliseconds)); }
    void onGameWindowDestroyed(UINT message, WPARAM wParam, LPARAM lParam) override {
        note(std::format("onGameWindowDestroyed {} {} {}", message, wParam, lParam));
    }

private:
    RecordingPopup popup;
};

RecordingRenderer renderer;

IRenderHookRenderer* hand(const char* exported) {
    note(exported);
    return recording.hasRenderer ? &renderer : nullptr;
}

}  // namespace

extern "C" {

__declspec(dllexport) HookRecording* hookRecording() { return &recording; }

__declspec(dllexport) RenderingMode GetRenderModeHandler() {
    note(kGetRenderModeHandler);
    const std::lock_guard lock(recording.mutex);
    const int mode = recording.modes.front();
    if (recording.modes.size() > 1) recording.modes.erase(recording.modes.begin());
    return static_cast<RenderingMode>(mode);
}

__declspec(dllexport) IRenderHookRenderer* GetD3D11RenderHookRenderer() { return hand(kGetD3D11RenderHookRenderer); }
__declspec(dllexport) IRenderHookRenderer* GetD3D12RenderHookRenderer() { return hand(kGetD3D12RenderHookRenderer); }
__declspec(dllexport) IRenderHookRenderer* GetOpenGLRenderHookRenderer() { return hand(kGetOpenGLRenderHookRenderer); }
}
