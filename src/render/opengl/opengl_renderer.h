#pragma once

#include <windows.h>

#include <memory>

#include "render/opengl/osr_renderer.h"
#include "render/osr_renderer.h"

namespace ZEMO::UI {

/// Draws a view into a window with OpenGL, one picture for each frame of the engine. The window may be the view's own
/// or the game's. The context is current on the engine thread for the length of a paint only.
///
/// Threads: as IOsrRenderer. The last reference may go on any thread.
class OpenGLRenderer final : public IOsrRenderer {
public:
    OpenGLRenderer(HWND target, bool hasCloseButton);
    ~OpenGLRenderer() override;
    OpenGLRenderer(const OpenGLRenderer&) = delete;
    OpenGLRenderer& operator=(const OpenGLRenderer&) = delete;

    /// Draws and shows. A window that gives no context stays as it is, with a line in the log.
    void onPaint(PaintElementType type, const RectList& dirtyRects, const void* buffer, int width, int height) override;
    void onPopupShow(CefRefPtr<CefBrowser> browser, bool show) override;
    void onPopupSize(CefRefPtr<CefBrowser> browser, const CefRect& rect) override;
    void render(bool* /*needResize*/) override {}
    void getPopupRect(CefRect* out) override { *out = renderer->getPopupRect(); }
    void clearPopupRects() override { renderer->clearPopupRects(); }
    bool isPopupRectEmpty() override { return renderer->isPopupRectEmpty(); }
    void onViewHidden() override {}

private:
    void openContext();

    std::shared_ptr<OsrRenderer> renderer;
    // Both are left to the system when the view goes.
    HDC deviceContext = nullptr;
    HGLRC glContext = nullptr;
    HWND window;
    bool contextOpened = false;  ///< tried, with whatever success
};

}  // namespace ZEMO::UI
