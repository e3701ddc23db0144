#include "render/d3d11/geometry.h"

namespace ZEMO::UI::D3D11 {

void Geometry::bind(const SharedContext& current) {
    context = current;
    ID3D11Buffer* const buffers[] = {buffer.get()};
    const UINT offset = 0;
    context->context->IASetVertexBuffers(0, 1, buffers, &stride, &offset);
    context->context->IASetPrimitiveTopology(primitive);
}

void Geometry::draw() const {
    if (context) context->context->Draw(vertexCount, 0);
}

}  // namespace ZEMO::UI::D3D11
