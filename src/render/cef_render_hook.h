#pragma once

#include <windows.h>

#include "render/cef_render_impl.h"

namespace ZEMO::UI {

/// Hands a layer's frames to the graphics hook module, which draws them into the game's own frame. Without a module it
/// is inactive and the local renderer takes over. Drawing through the module is not part of this build yet.
class CefRenderHook final : public CefRenderImpl {
public:
    /// `hookModule` may be null. Without a module the game counts as an OpenGL game, like the local renderer.
    CefRenderHook(HMODULE hookModule, uint32_t sleepTime);

    void tick(uint32_t /*openGlSleepTime*/) override {}
    bool isActive() override { return hookModule != nullptr; }
    bool needsRepaint() override { return false; }
    void onViewClosed() override {}
    void clearFrame() override {}
    bool paint(bool, CefRefPtr<CefBrowser>, PaintElementType, const RectList&, const void*, int, int) override {
        return false;
    }
    void onResized() override {}
    void onPopupShow(bool) override {}
    void onPopupRect(const Rect16&) override {}

private:
    HMODULE hookModule;
};

}  // namespace ZEMO::UI
