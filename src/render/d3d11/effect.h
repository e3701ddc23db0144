#pragma once

#include "render/d3d11/context.h"

namespace ZEMO::UI::D3D11 {

/// A pair of shaders with the layout of their vertices; what could not be made is empty. Render
/// thread, but for the destructor.
class Effect {
public:
    Effect(std::shared_ptr<ID3D11VertexShader> vertices, std::shared_ptr<ID3D11PixelShader> pixels,
           std::shared_ptr<ID3D11InputLayout> layout)
        : vertexShader(std::move(vertices)), pixelShader(std::move(pixels)), inputLayout(std::move(layout)) {}

    void bind(const SharedContext& current);
    /// Whether something would show. A draw without a shader must show nothing, and not every driver survives it.
    bool canDraw() const { return vertexShader && pixelShader && inputLayout; }

private:
    std::shared_ptr<ID3D11VertexShader> vertexShader;
    std::shared_ptr<ID3D11PixelShader> pixelShader;
    std::shared_ptr<ID3D11InputLayout> inputLayout;
    SharedContext context;
};

}  // namespace ZEMO::UI::D3D11
