#pragma once

#include <memory>

#include "include/cef_render_handler.h"
#include "render/cef_render_impl.h"

namespace ZEMO::UI {

/// A local renderer: draws one view into a window. Frames and popup calls come on the engine thread, render on the
/// view's render thread.
class IOsrRenderer {
public:
    virtual void onPaint(PaintElementType type, const RectList& dirtyRects, const void* buffer, int width,
                         int height) = 0;
    virtual void onPopupShow(CefRefPtr<CefBrowser> browser, bool show) = 0;
    /// Device pixels.
    virtual void onPopupSize(CefRefPtr<CefBrowser> browser, const CefRect& rect) = 0;
    /// Draws and presents; clears *needResize once it has resized.
    virtual void render(bool* needResize) = 0;
    virtual void getPopupRect(CefRect* out) = 0;
    virtual void clearPopupRects() = 0;
    virtual bool isPopupRectEmpty() = 0;
    virtual void reserved() {}
    virtual void onViewHidden() = 0;
    virtual ~IOsrRenderer() = default;
};

/// Which local renderer the factory makes.
inline constexpr int kRendererD3D11 = 0;
inline constexpr int kRendererD3D12 = 1;
inline constexpr int kRendererOpenGL = 2;

/// A local renderer of `kind` for `window`; empty for an unknown kind, and for one that this build does not bring. The
/// library itself asks for OpenGL only.
std::shared_ptr<IOsrRenderer> createOsrRenderer(int kind, HWND window, bool hasCloseButton);

}  // namespace ZEMO::UI
