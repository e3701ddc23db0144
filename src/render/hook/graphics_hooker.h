#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <mutex>

#include "zemo/graphics_hook.h"

namespace ZEMO::UI {

/// Holds the renderer of the graphics hook module for all views of the process. It outlives them.
///
/// Threads: attach runs on the thread that makes the first view and on render threads; the rest on any. The renderer is
/// read with each frame, so it is published by an atomic and not behind the lock.
class ZEMOGraphicsHooker {
public:
    static ZEMOGraphicsHooker& instance();

    /// Asks the module for the game's graphics API and, once that is known, takes the renderer for it. A null module
    /// makes the game an OpenGL game. Returns at once while another thread is at it.
    void attach(HMODULE hookModule, uint32_t sleepTime);
    /// Null until the module knows the API, and for good where it has no renderer for it.
    IRenderHookRenderer* getRenderer() const { return renderer.load(std::memory_order_acquire); }
    /// The game's window is being destroyed: told to the module before anyone else sees the message.
    void onGameWindowDestroyed(UINT message, WPARAM wParam, LPARAM lParam) const;
    /// The module is about to be freed.
    void forgetRenderer() { renderer.store(nullptr, std::memory_order_release); }

private:
    RenderingMode askMode(HMODULE hookModule);
    void takeRenderer(HMODULE hookModule, uint32_t sleepTime);

    std::atomic<IRenderHookRenderer*> renderer{nullptr};  ///< the module's
    std::mutex attaching;                                 ///< guards what follows; never waited for
    GetRenderModeFunction* getRenderMode = nullptr;
    bool lacksHandler = false;  ///< said once: the module is asked ten times a second
};

}  // namespace ZEMO::UI
