#include <objbase.h>

#include "render/d3d11/d3d11_renderer.h"
#include "render/opengl/opengl_renderer.h"
#include "render/osr_renderer.h"

namespace ZEMO::UI {

std::shared_ptr<IOsrRenderer> createOsrRenderer(int kind, HWND window, bool hasCloseButton) {
    switch (kind) {
        case kRendererD3D11:
        case kRendererD3D12:
            CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);
            return std::make_shared<D3D11Renderer>(window, hasCloseButton);
        case kRendererOpenGL:
            return std::make_shared<OpenGLRenderer>(window, hasCloseButton);
        default:
            return {};
    }
}

}  // namespace ZEMO::UI
