#include "render/rendering_mode.h"

#include <atomic>

#include "core/log.h"

namespace ZEMO::UI {
namespace {

// Written on the thread that makes the first view or on a render thread, read on the engine thread.
std::atomic<RenderingMode> currentMode{RenderingMode::Unknown};

}  // namespace

RenderingMode getRenderingMode() { return currentMode.load(std::memory_order_relaxed); }

void setRenderingMode(RenderingMode mode) {
    currentMode.store(mode, std::memory_order_relaxed);
    switch (mode) {
        case RenderingMode::D3D11:
            return Core::logDebugA("RenderingMode: D3D11\n");
        case RenderingMode::D3D12:
            return Core::logDebugA("RenderingMode: D3D12\n");
        case RenderingMode::OpenGL:
            return Core::logDebugA("RenderingMode: OpenGL\n");
        case RenderingMode::Vulkan:
            return Core::logDebugA("RenderingMode: Vulkan\n");
        case RenderingMode::Unknown:
            return Core::logDebugA("RenderingMode: Unknown\n");
    }
}

}  // namespace ZEMO::UI
