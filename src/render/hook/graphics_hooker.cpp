#include "render/hook/graphics_hooker.h"

#include "core/log.h"
#include "core/never_destroyed.h"
#include "core/system_function.h"
#include "render/rendering_mode.h"

namespace ZEMO::UI {
namespace {

// Windows and threads may still ask for it while static objects go.
Core::NeverDestroyed<ZEMOGraphicsHooker> hooker;

template <class Function>
Function* findExport(HMODULE module, const char* name) {
    auto* const function = Core::systemFunction<Function>(module, name);
    if (!function) Core::logDebugA("The graphics hook module does not export %s\n", name);
    return function;
}

IRenderHookRenderer* askRenderer(HMODULE module, const char* name) {
    auto* const get = findExport<GetRenderHookRendererFunction>(module, name);
    return get ? get() : nullptr;
}

IRenderHookRenderer* askOpenGLRenderer(HMODULE module, uint32_t sleepTime) {
    IRenderHookRenderer* const taken = askRenderer(module, kGetOpenGLRenderHookRenderer);
    if (taken && sleepTime != 0) taken->setSleepTime(sleepTime);
    return taken;
}

}  // namespace

ZEMOGraphicsHooker& ZEMOGraphicsHooker::instance() { return *hooker; }

void ZEMOGraphicsHooker::attach(HMODULE hookModule, uint32_t sleepTime) {
    if (!hookModule) {
        setRenderingMode(RenderingMode::OpenGL);
        return;
    }
    // Two views' render threads may come at once: one is enough, and the module hears each question once.
    const std::unique_lock lock(attaching, std::try_to_lock);
    if (!lock || getRenderingMode() != RenderingMode::Unknown) return;
    if (askMode(hookModule) == RenderingMode::Unknown) return;  // the game has not presented yet
    setRenderingMode(getRenderMode());
    takeRenderer(hookModule, sleepTime);
}

RenderingMode ZEMOGraphicsHooker::askMode(HMODULE hookModule) {
    if (lacksHandler) return RenderingMode::Unknown;
    getRenderMode = findExport<GetRenderModeFunction>(hookModule, kGetRenderModeHandler);
    lacksHandler = !getRenderMode;
    return lacksHandler ? RenderingMode::Unknown : getRenderMode();
}

// The renderer is published last: a frame that still sees none is skipped, and none comes before the sleep time.
void ZEMOGraphicsHooker::takeRenderer(HMODULE hookModule, uint32_t sleepTime) {
    IRenderHookRenderer* taken = nullptr;
    switch (getRenderingMode()) {
        case RenderingMode::D3D11:
            taken = askRenderer(hookModule, kGetD3D11RenderHookRenderer);
            break;
        case RenderingMode::D3D12:
            taken = askRenderer(hookModule, kGetD3D12RenderHookRenderer);
            break;
        case RenderingMode::OpenGL:
            taken = askOpenGLRenderer(hookModule, sleepTime);
            break;
        default:
            return;  // nothing draws for this API: the page does not appear
    }
    renderer.store(taken, std::memory_order_release);
}

void ZEMOGraphicsHooker::onGameWindowDestroyed(UINT message, WPARAM wParam, LPARAM lParam) const {
    if (IRenderHookRenderer* const current = getRenderer()) current->onGameWindowDestroyed(message, wParam, lParam);
}

}  // namespace ZEMO::UI
