#include "gl_hook.h"

#include <windows.h>

#include <atomic>
#include <mutex>

#include "game_frames.h"
#include "gl_painter.h"
#include "page_picture.h"
#include "patch.h"

// A frame of the game, in order:
//
// 1. The game calls SwapBuffers or wglSwapBuffers; its import table leads here.
// 2. The page is drawn into the window's back buffer, in a context of the painter's own.
// 3. The game's context is made current again, and the system's function swaps.
//
// The painter is used by whichever thread swaps the game's window. Where the window goes, its thread takes the
// painter's context away, or has the swapping thread do it if that is just drawing: neither waits for the other.
extern "C" WINGDIAPI BOOL WINAPI wglSwapBuffers(HDC);  // not in the system's headers

namespace ZEMO::GraphicsHook {
namespace {

using UI::RenderingMode;
using SwapFunction = BOOL WINAPI(HDC);

std::mutex painting;  // held while a frame is drawn
std::atomic<bool> releaseWanted{false};
GlPainter& painter = *new GlPainter;  // never destroyed: a context can't be given back when the process ends

void drawPage(HDC dc, HWND window) {
    const std::lock_guard lock(painting);
    if (releaseWanted.exchange(false)) painter.release();
    pagePicture().visit([&](PagePicture::Content& content) { painter.paint(dc, window, content); });
    if (releaseWanted.exchange(false)) painter.release();
}

BOOL swapWithPage(SwapFunction* swap, HDC dc) {
    if (!mayTakePage(RenderingMode::OpenGL)) return swap(dc);
    const HWND window = WindowFromDC(dc);
    if (!takesPage(RenderingMode::OpenGL, window)) return swap(dc);
    drawPage(dc, window);
    const BOOL result = swap(dc);
    if (const uint32_t pause = pauseAfterFrame()) Sleep(pause);
    return result;
}

BOOL WINAPI swapBuffers(HDC dc) { return swapWithPage(&SwapBuffers, dc); }
BOOL WINAPI swapBuffersOfOpenGL(HDC dc) { return swapWithPage(&wglSwapBuffers, dc); }

}  // namespace

void hookOpenGL() {
    const ImportPatch patches[] = {{"SwapBuffers", reinterpret_cast<void*>(&swapBuffers)},
                                   {"wglSwapBuffers", reinterpret_cast<void*>(&swapBuffersOfOpenGL)}};
    patchImports(patches, std::size(patches));
}

void releaseGlPainter() {
    releaseWanted = true;
    const std::unique_lock lock(painting, std::try_to_lock);
    if (lock && releaseWanted.exchange(false)) painter.release();
}

}  // namespace ZEMO::GraphicsHook
