#include "render/cef_render_hook.h"

#include <mutex>

#include "render/rendering_mode.h"

namespace ZEMO::UI {

CefRenderHook::CefRenderHook(HMODULE module, uint32_t /*sleepTime*/) : hookModule(module) {
    static std::once_flag attached;
    std::call_once(attached, [this] {
        if (!hookModule) setRenderingMode(RenderingMode::OpenGL);
    });
}

}  // namespace ZEMO::UI
