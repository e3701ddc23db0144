// What the reference hook module costs an OpenGL game's frame at 1920x1080: with no page, and with a page in which
// nothing changed. Frames of all kinds take turns, so each meets the same machine. The engine is not asked for
// anything: the module gets its one frame as the library would hand it over. A page that stays must still be blended
// over each new frame of the game; the least that this can cost is the game's own draw of the same rectangle.
#include <windows.h>

#include <GL/gl.h>
#include <zemo/graphics_hook.h>

#include <stdexcept>
#include <vector>

#include "engine_bench/measured.h"

namespace {

using namespace ZEMO;
using namespace ZEMO::Bench;

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr size_t kSamples = 120;
constexpr GLenum kBgra = 0x80E1;

template <class Function>
Function* find(HMODULE module, const char* name) {
    auto* const found = reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
    if (!found) throw std::runtime_error(name);
    return found;
}

HMODULE loadHook() {
    wchar_t path[1024];
    GetModuleFileNameW(nullptr, path, 1024);
    std::wstring file(path);
    file.resize(file.find_last_of(L'\\'));
    const HMODULE module = LoadLibraryW((file + L"\\hook\\ZEMOGraphicsHook.dll").c_str());
    if (!module) throw std::runtime_error("the reference module is not there");
    return module;
}

class Game {
public:
    Game() {
        PIXELFORMATDESCRIPTOR wanted{};
        wanted.nSize = sizeof wanted;
        wanted.nVersion = 1;
        wanted.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
        wanted.cColorBits = 32;
        SetPixelFormat(dc, ChoosePixelFormat(dc, &wanted), &wanted);
        wglMakeCurrent(dc, wglCreateContext(dc));
        ShowWindow(window, SW_SHOW);
        pump();
        glEnable(GL_TEXTURE_2D);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, kWidth, kHeight, 0, kBgra, GL_UNSIGNED_BYTE, page.data());
        glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
        glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    }

    /// One frame; `drawsPage`: by the game itself. Milliseconds until the picture is on its way.
    template <class Swap>
    double frame(bool drawsPage, Swap&& swap) {
        pump();
        glFinish();
        const Clock::time_point started = Clock::now();
        glClearColor(0.2f, 0.3f, 0.4f, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        if (drawsPage) drawPage();
        swap(dc);
        glFinish();
        return milliseconds(Clock::now() - started);
    }

    std::vector<uint32_t> page = std::vector<uint32_t>(size_t{kWidth} * kHeight, 0x80402010u);

private:
    static void pump() {
        for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);) DispatchMessageW(&message);
    }
    static void drawPage() {
        glEnable(GL_BLEND);
        glBegin(GL_TRIANGLE_STRIP);
        glTexCoord2f(0, 0), glVertex2f(-1, 1);
        glTexCoord2f(1, 0), glVertex2f(1, 1);
        glTexCoord2f(0, 1), glVertex2f(-1, -1);
        glTexCoord2f(1, 1), glVertex2f(1, -1);
        glEnd();
        glDisable(GL_BLEND);
    }

    HWND window =
        CreateWindowExW(0, L"STATIC", L"game", WS_POPUP, 0, 0, kWidth, kHeight, nullptr, nullptr, nullptr, nullptr);
    HDC dc = GetDC(window);
};

int run() {
    Game game;
    const HMODULE module = loadHook();
    find<UI::GetRenderModeFunction>(module, UI::kGetRenderModeHandler)();
    const auto hooked = [](HDC dc) { SwapBuffers(dc); };
    auto* const system = find<BOOL WINAPI(HDC)>(GetModuleHandleW(L"gdi32.dll"), "SwapBuffers");
    game.frame(false, hooked);
    UI::IRenderHookRenderer* const renderer =
        find<UI::GetRenderHookRendererFunction>(module, UI::kGetOpenGLRenderHookRenderer)();
    if (find<UI::GetRenderModeFunction>(module, UI::kGetRenderModeHandler)() != UI::RenderingMode::OpenGL)
        throw std::runtime_error("the module has not seen the game's frame");

    std::vector<double> bare, hookedBare, ownPage, hookedPage;
    const UI::Hook::RectList whole{{0, 0, kWidth, kHeight}};
    for (size_t i = 0; i < kSamples; ++i) {
        bare.push_back(game.frame(false, system));
        hookedBare.push_back(game.frame(false, hooked));
        ownPage.push_back(game.frame(true, system));
        renderer->setFrameActive(true);
        renderer->onPaint(UI::Hook::PET_VIEW, &whole, game.page.data(), kWidth, kHeight);
        game.frame(false, hooked);  // takes the upload
        hookedPage.push_back(game.frame(false, hooked));
        renderer->setFrameActive(false);
    }
    report("frame_with_hook_no_page", "ms", hookedBare, "frame");
    report("frame", "ms", bare);
    report("frame_with_hook_still_page", "ms", hookedPage, "frame_that_draws_the_page_itself");
    report("frame_that_draws_the_page_itself", "ms", ownPage);
    return 0;
}

}  // namespace

int main() { ZEMO::Bench::leaveWith(run); }
