#include "gl_painter.h"

#include "log.h"

namespace ZEMO::GraphicsHook {
namespace {

constexpr GLenum kBgra = 0x80E1;        // GL_BGRA, of OpenGL 1.2
constexpr GLint kClampToEdge = 0x812F;  // GL_CLAMP_TO_EDGE, likewise

using MakeCurrentFunction = BOOL WINAPI(HDC draw, HDC read, HGLRC context);
using CurrentReadDcFunction = HDC WINAPI();

template <class Function>
Function* extension(const char* name) {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(wglGetProcAddress(name)));
}

/// The game's context, put back at the end of the scope. A game may draw to one window and read from another.
class CurrentContext {
public:
    CurrentContext() {
        if (!context) return;
        if (auto* const currentRead = extension<CurrentReadDcFunction>("wglGetCurrentReadDCARB")) read = currentRead();
        makeCurrent = extension<MakeCurrentFunction>("wglMakeContextCurrentARB");
    }
    ~CurrentContext() {
        const bool isSplit = read != draw && makeCurrent;
        if (!(isSplit ? makeCurrent(draw, read, context) : wglMakeCurrent(draw, context)))
            logLine("the game's OpenGL context can't be made current again");
    }
    CurrentContext(const CurrentContext&) = delete;
    CurrentContext& operator=(const CurrentContext&) = delete;

private:
    HGLRC context = wglGetCurrentContext();
    HDC draw = wglGetCurrentDC();
    HDC read = draw;
    MakeCurrentFunction* makeCurrent = nullptr;
};

}  // namespace

void GlPainter::paint(HDC dc, HWND window, PagePicture::Content& content) {
    RECT client{};
    if (!GetClientRect(window, &client) || client.right < 1 || client.bottom < 1) return;  // minimised
    const CurrentContext game;
    if (!hasContextFor(dc) || !wglMakeCurrent(dc, context)) return release();
    if (!textures[0].name) prepare();
    frame = {static_cast<int>(client.right), static_cast<int>(client.bottom)};
    glViewport(0, 0, frame.width, frame.height);
    drawing.draw(*this, content, window, frame);
}

void GlPainter::release() {
    if (context) wglDeleteContext(context);
    *this = {};
}

// A context goes with every window of one pixel format.
bool GlPainter::hasContextFor(HDC dc) {
    const int format = GetPixelFormat(dc);
    if (context && format == pixelFormat) return true;
    release();
    context = wglCreateContext(dc);
    pixelFormat = format;
    if (!context) logLine("no OpenGL context for the game's window");
    return context != nullptr;
}

void GlPainter::prepare() {
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    glDisable(GL_DITHER);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    for (Texture& texture : textures) glGenTextures(1, &texture.name);
}

void GlPainter::upload(Layer layer, const Plane& plane, const Box& changed) {
    Texture& texture = textures[static_cast<size_t>(layer)];
    glBindTexture(GL_TEXTURE_2D, texture.name);
    if (texture.width != plane.getWidth() || texture.height != plane.getHeight()) {
        texture.width = plane.getWidth();
        texture.height = plane.getHeight();
        const GLint filter = layer == Layer::CloseButton ? GL_LINEAR : GL_NEAREST;
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, kClampToEdge);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, kClampToEdge);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, texture.width, texture.height, 0, kBgra, GL_UNSIGNED_BYTE, nullptr);
    }
    glPixelStorei(GL_UNPACK_ROW_LENGTH, plane.getWidth());
    glTexSubImage2D(GL_TEXTURE_2D, 0, changed.left, changed.top, changed.right - changed.left,
                    changed.bottom - changed.top, kBgra, GL_UNSIGNED_BYTE, plane.row(changed.top) + changed.left);
}

void GlPainter::draw(Layer layer, const Place& place) {
    glBindTexture(GL_TEXTURE_2D, textures[static_cast<size_t>(layer)].name);
    glBlendFunc(layer == Layer::CloseButton ? GL_SRC_ALPHA : GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    const float toX = 2.0f / static_cast<float>(frame.width);
    const float toY = 2.0f / static_cast<float>(frame.height);
    const float left = place.left * toX - 1;
    const float right = place.right * toX - 1;
    const float top = 1 - place.top * toY;
    const float bottom = 1 - place.bottom * toY;
    glBegin(GL_TRIANGLE_STRIP);
    glTexCoord2f(0, 0), glVertex2f(left, top);
    glTexCoord2f(1, 0), glVertex2f(right, top);
    glTexCoord2f(0, 1), glVertex2f(left, bottom);
    glTexCoord2f(1, 1), glVertex2f(right, bottom);
    glEnd();
}

}  // namespace ZEMO::GraphicsHook
