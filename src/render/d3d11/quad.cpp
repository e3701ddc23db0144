#include "render/d3d11/quad.h"

namespace ZEMO::UI::D3D11 {

QuadEdges quadEdges(float x, float y, float width, float height) {
    const float left = 2 * x - 1;
    const float top = 1 - 2 * y;
    return {left, top, left + 2 * width, top - 2 * height};
}

QuadEdges closeButtonEdges(int clientWidth, int clientHeight, int size, float margin) {
    const auto width = static_cast<float>(clientWidth);
    const auto height = static_cast<float>(clientHeight);
    const float reach = static_cast<float>(size) + margin;
    return {1 - 2 * reach / width, 1 - 2 * margin / height, 1 - 2 * margin / width, 1 - 2 * reach / height};
}

Quad makeQuad(const QuadEdges& edges, bool flip) {
    constexpr float kDepth = 1;
    const float top = flip ? 0 : 1;
    const float bottom = 1 - top;
    return {{{edges.left, edges.top, kDepth, 0, top},
             {edges.right, edges.top, kDepth, 1, top},
             {edges.left, edges.bottom, kDepth, 0, bottom},
             {edges.right, edges.bottom, kDepth, 1, bottom}}};
}

}  // namespace ZEMO::UI::D3D11
