#include <windows.h>

#include <zemo/graphics_hook.h>

#include "dxgi_hook.h"
#include "game_frames.h"
#include "gl_hook.h"
#include "page_renderer.h"
#include "patch.h"

// The module's exports. The library asks for the API when it makes its first view and then ten times a second until it
// has an answer, so this is where the game's calls are looked for: not at load, where the loader's lock is held.
namespace {

using namespace ZEMO::GraphicsHook;
using ZEMO::UI::IRenderHookRenderer;
using ZEMO::UI::RenderingMode;

void lookForFrames() {
    static bool isFirst = true;
    if (isFirst) pinModule();
    hookOpenGL();
    // A device of our own costs time and memory: an OpenGL game has shown itself before.
    if (!isFirst) hookDxgi();
    isFirst = false;
}

}  // namespace

// NOLINTBEGIN(readability-identifier-naming): the names that the library looks for
extern "C" {

__declspec(dllexport) RenderingMode GetRenderModeHandler() {
    if (gameApi() == RenderingMode::Unknown) lookForFrames();
    return gameApi();
}

__declspec(dllexport) IRenderHookRenderer* GetD3D11RenderHookRenderer() { return pageRenderer(); }
__declspec(dllexport) IRenderHookRenderer* GetD3D12RenderHookRenderer() { return pageRenderer(); }
__declspec(dllexport) IRenderHookRenderer* GetOpenGLRenderHookRenderer() { return pageRenderer(); }

BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void*) {
    if (reason == DLL_PROCESS_ATTACH) DisableThreadLibraryCalls(module);
    return TRUE;
}
}
// NOLINTEND(readability-identifier-naming)
