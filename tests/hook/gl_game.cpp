#include "hook/gl_game.h"

#include <utility>

#include "core/wine/import_table.h"
#include "support/import_replaced.h"

namespace ZEMO::Test {
namespace {

constexpr GLenum kBgra = 0x80E1;
Presented frame;

// Read in the context that is current, which must be the game's again.
BOOL WINAPI readAndSwap(HDC dc) {
    RECT client{};
    GetClientRect(WindowFromDC(dc), &client);
    frame.width = client.right;
    frame.height = client.bottom;
    frame.pixels.assign(static_cast<size_t>(frame.width) * frame.height, 0);
    ++frame.count;
    GLint alignment = 0;
    glGetIntegerv(GL_PACK_ALIGNMENT, &alignment);
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    for (int y = 0; y < frame.height; ++y) {
        glReadPixels(0, frame.height - 1 - y, frame.width, 1, kBgra, GL_UNSIGNED_BYTE,
                     frame.pixels.data() + static_cast<size_t>(y) * frame.width);
    }
    glPixelStorei(GL_PACK_ALIGNMENT, alignment);
    // Past this program's own import, which leads to the module.
    return systemFunction<BOOL WINAPI(HDC)>(L"gdi32.dll", "SwapBuffers")(dc);
}

}  // namespace

GlGame::GlGame(HWND gameWindow) : window(gameWindow), dc(GetDC(gameWindow)) {
    PIXELFORMATDESCRIPTOR wanted{};
    wanted.nSize = sizeof wanted;
    wanted.nVersion = 1;
    wanted.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
    wanted.cColorBits = 32;
    wanted.cDepthBits = 24;
    wanted.cStencilBits = 8;
    SetPixelFormat(dc, ChoosePixelFormat(dc, &wanted), &wanted);
    makeContext();
}

size_t GlGame::end() {
    if (!context) return 0;
    wglMakeCurrent(nullptr, nullptr);
    wglDeleteContext(std::exchange(context, nullptr));
    ReleaseDC(window, dc);
    return 0;
}

size_t GlGame::liveObjects() const {
    size_t textures = 0;
    for (GLuint name = 1; name < 4096; ++name) textures += glIsTexture(name);
    return textures;
}

void GlGame::makeContext() {
    context = wglCreateContext(dc);
    wglMakeCurrent(dc, context);
}

void GlGame::remake() {
    wglMakeCurrent(nullptr, nullptr);
    wglDeleteContext(context);
    makeContext();
}

void GlGame::present() {
    glClearColor(40 / 255.0f, 80 / 255.0f, 120 / 255.0f, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    swap();
}

void GlGame::swap() { SwapBuffers(dc); }

void GlGame::watchFrames(HMODULE hookModule) {
    Core::Wine::replaceImport(Core::Wine::findImport(hookModule, "SwapBuffers"), reinterpret_cast<void*>(&readAndSwap));
}

Presented& GlGame::presented() { return frame; }

}  // namespace ZEMO::Test
