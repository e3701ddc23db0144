#pragma once

#include <cstdint>

#include "render/d3d11/context.h"

namespace ZEMO::UI::D3D11 {

/// A vertex buffer with what it takes to draw it. Render thread, but for the destructor.
class Geometry {
public:
    Geometry(D3D_PRIMITIVE_TOPOLOGY topology, uint32_t vertices, uint32_t strideBytes,
             std::shared_ptr<ID3D11Buffer> vertexBuffer)
        : primitive(topology), vertexCount(vertices), stride(strideBytes), buffer(std::move(vertexBuffer)) {}

    void bind(const SharedContext& current);
    /// On the context of the last bind.
    void draw() const;

private:
    D3D_PRIMITIVE_TOPOLOGY primitive;
    uint32_t vertexCount;
    uint32_t stride;
    std::shared_ptr<ID3D11Buffer> buffer;
    SharedContext context;
};

}  // namespace ZEMO::UI::D3D11
