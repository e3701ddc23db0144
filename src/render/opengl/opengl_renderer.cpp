#include "render/opengl/opengl_renderer.h"

#include "core/log.h"
#include "render/display_scale.h"

namespace ZEMO::UI {
namespace {

void releaseContext() { wglMakeCurrent(nullptr, nullptr); }

/// The context for one paint. Whatever happens in between, what was drawn is shown and the context given back.
class PaintScope {
public:
    PaintScope(HDC target, HGLRC context) : device(target), current(wglMakeCurrent(target, context) != FALSE) {}
    ~PaintScope() {
        if (!current) return;
        SwapBuffers(device);
        releaseContext();
    }
    PaintScope(const PaintScope&) = delete;
    PaintScope& operator=(const PaintScope&) = delete;
    explicit operator bool() const { return current; }

private:
    HDC device;
    bool current;
};

PIXELFORMATDESCRIPTOR windowPixelFormat() {
    PIXELFORMATDESCRIPTOR format{};
    format.nSize = sizeof format;
    format.nVersion = 1;
    format.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
    format.iPixelType = PFD_TYPE_RGBA;
    format.cColorBits = 24;
    format.cDepthBits = 16;
    format.iLayerType = PFD_MAIN_PLANE;
    return format;
}

}  // namespace

OpenGLRenderer::OpenGLRenderer(HWND target, bool hasCloseButton)
    : renderer(std::make_shared<OsrRenderer>(hasCloseButton, getWindowScale(target))), window(target) {}

OpenGLRenderer::~OpenGLRenderer() {
    // The thread that drops a view may be one of the game's with a context of the game, where our texture's name is
    // some texture of the game.
    const HDC gamesDevice = wglGetCurrentDC();
    const HGLRC gamesContext = wglGetCurrentContext();
    if (gamesContext) releaseContext();
    renderer.reset();
    if (gamesContext) wglMakeCurrent(gamesDevice, gamesContext);
}

// A window that has a pixel format already, a game's, keeps it: the context then takes that one.
void OpenGLRenderer::openContext() {
    contextOpened = true;
    deviceContext = GetDC(window);
    const PIXELFORMATDESCRIPTOR wanted = windowPixelFormat();
    SetPixelFormat(deviceContext, ChoosePixelFormat(deviceContext, &wanted), &wanted);
    glContext = wglCreateContext(deviceContext);
    if (!wglMakeCurrent(deviceContext, glContext)) {
        Core::logDebugA("OpenGL: the window of a view gives no context, nothing is drawn there\n");
        return;
    }
    renderer->initialize();
    releaseContext();
}

void OpenGLRenderer::onPaint(PaintElementType type, const RectList& dirtyRects, const void* buffer, int width,
                             int height) {
    if (!contextOpened) openContext();
    const PaintScope paint(deviceContext, glContext);
    if (!paint) return;
    renderer->onPaint(type, dirtyRects, buffer, width, height);
    renderer->render();
}

void OpenGLRenderer::onPopupShow(CefRefPtr<CefBrowser> /*browser*/, bool show) {
    if (!show) renderer->clearPopupRects();
}

void OpenGLRenderer::onPopupSize(CefRefPtr<CefBrowser> /*browser*/, const CefRect& rect) {
    renderer->onPopupSize(rect);
}

}  // namespace ZEMO::UI
