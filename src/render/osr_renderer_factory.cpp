#include "render/osr_renderer.h"

namespace ZEMO::UI {

std::shared_ptr<IOsrRenderer> createOsrRenderer(int kind, HWND /*window*/, bool /*hasCloseButton*/) {
    switch (kind) {
        case kRendererD3D11:
        case kRendererD3D12:
        case kRendererOpenGL:
            return {};  // The local renderers are not part of this build yet: a view without a consumer shows nothing.
        default:
            return {};
    }
}

}  // namespace ZEMO::UI
