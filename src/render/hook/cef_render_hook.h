#pragma once

#include <windows.h>

#include "render/cef_render_impl.h"

namespace ZEMO::UI {

/// Hands a layer's frames to the graphics hook module, which draws them into the game's own frame. The frame passes
/// uncopied and uncompared. Without a module it is inactive and the local renderer takes over; until the module knows
/// the game's graphics API, each cycle asks it anew and frames are skipped.
class CefRenderHook final : public CefRenderImpl {
public:
    /// `hookModule` may be null. The first object of the process is the first to ask the module.
    CefRenderHook(HMODULE hookModule, uint32_t sleepTime);

    void tick(uint32_t openGlSleepTime) override;
    bool isActive() override { return hookModule != nullptr; }
    bool needsRepaint() override;
    void onViewClosed() override;
    void clearFrame() override {}
    bool paint(bool drawCloseButton, CefRefPtr<CefBrowser> browser, PaintElementType type, const RectList& dirtyRects,
               const void* buffer, int width, int height) override;
    void onResized() override;
    void onPopupShow(bool show) override;
    void onPopupRect(const Rect16& ltrb) override;

private:
    HMODULE hookModule;
};

}  // namespace ZEMO::UI
