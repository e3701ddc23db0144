#include "render/opengl/opengl_renderer.h"
#include "render/osr_renderer.h"

namespace ZEMO::UI {

std::shared_ptr<IOsrRenderer> createOsrRenderer(int kind, HWND window, bool hasCloseButton) {
    switch (kind) {
        case kRendererD3D11:
        case kRendererD3D12:
            return {};  // not part of this build yet
        case kRendererOpenGL:
            return std::make_shared<OpenGLRenderer>(window, hasCloseButton);
        default:
            return {};
    }
}

}  // namespace ZEMO::UI
